#include "metadata/http/HttpTransport.h"

namespace {

HttpTransport* replacementTransport = nullptr;

} // namespace

HttpTransport& httpTransport()
{
    // Never destroyed: a thread may still be in a request while the process ends.
    static HttpTransport* const own = makeHttpTransport().release();
    return replacementTransport ? *replacementTransport : *own;
}

HttpTransportOverride::HttpTransportOverride(HttpTransport& replacement) : previous(replacementTransport)
{
    replacementTransport = &replacement;
}

HttpTransportOverride::~HttpTransportOverride()
{
    replacementTransport = previous;
}
