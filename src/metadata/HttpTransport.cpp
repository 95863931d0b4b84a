#include "metadata/HttpTransport.h"

namespace {

HttpTransport* replacementTransport = nullptr;

} // namespace

HttpTransport& httpTransport()
{
    static const std::unique_ptr<HttpTransport> own = makeHttpTransport();
    return replacementTransport ? *replacementTransport : *own;
}

HttpTransportOverride::HttpTransportOverride(HttpTransport& replacement)
    : previous(replacementTransport)
{
    replacementTransport = &replacement;
}

HttpTransportOverride::~HttpTransportOverride()
{
    replacementTransport = previous;
}
