#include "codecs/media/LinuxMediaModule.h"
#include "codecs/media/MediaReader.h"
#include "codecs/media/MediaWriter.h"

#include <QDebug>

#include <dlfcn.h>

#include <filesystem>
#include <stdexcept>

namespace {

/// The module, loaded for good.
struct Module {
    NewMediaReader* newReader;
    NewMediaWriter* newWriter;
};

[[noreturn]] void fail()
{
    const char* reason = dlerror();
    qWarning().noquote() << "MediaModule: cannot be loaded:" << reason;
    throw std::runtime_error(reason);
}

template<typename Function>
Function* functionNamed(const char* name, void* library)
{
    void* found = dlsym(library, name);
    if (!found)
        fail();
    return reinterpret_cast<Function*>(found);
}

Module load()
{
    // Beside the program, wherever somebody has put both.
    const auto path = std::filesystem::read_symlink("/proc/self/exe").parent_path() / TARVEL_MEDIA_MODULE;
    void* library = dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL);
    if (!library)
        fail();
    return {functionNamed<NewMediaReader>(newMediaReaderName, library),
            functionNamed<NewMediaWriter>(newMediaWriterName, library)};
}

const Module& module()
{
    static const Module loaded = load();
    return loaded;
}

} // namespace

std::unique_ptr<MediaReader> makeMediaReader()
{
    return std::unique_ptr<MediaReader>(module().newReader());
}

std::unique_ptr<MediaWriter> makeMediaWriter()
{
    return std::unique_ptr<MediaWriter>(module().newWriter());
}
