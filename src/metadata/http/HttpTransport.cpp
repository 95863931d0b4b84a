#include "metadata/http/HttpTransport.h"

HttpTransport& httpTransport()
{
    // Never destroyed: a thread may still be in a request while the process ends.
    static HttpTransport* const own = makeHttpTransport().release();
    return HttpTransportOverride::orElse(*own);
}
