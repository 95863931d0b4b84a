#include "metadata/http/HttpAddress.h"

#include <QUrl>

#include <curl/curl.h>

#include <memory>

namespace {

struct UrlCloser {
    void operator()(CURLU* handle) const { curl_url_cleanup(handle); }
};
using Url = std::unique_ptr<CURLU, UrlCloser>;

bool setPart(const Url& url, CURLUPart part, const QByteArray& text, unsigned flags = 0)
{
    return url && curl_url_set(url.get(), part, text.constData(), flags) == CURLUE_OK;
}

QByteArray part(const Url& url, CURLUPart wanted)
{
    char* text = nullptr;
    if (!url || curl_url_get(url.get(), wanted, &text, 0) != CURLUE_OK)
        return {};
    QByteArray copy(text);
    curl_free(text);
    return copy;
}

} // namespace

QByteArray addressOf(const HttpRequest& request)
{
    const bool isNumericV6 = request.host.contains(QLatin1Char(':'));
    const QByteArray host = isNumericV6 ? "[" + request.host.toLatin1() + "]" : QUrl::toAce(request.host);
    const Url url(curl_url());
    if (host.isEmpty() || !setPart(url, CURLUPART_SCHEME, request.secure ? "https" : "http")
        || !setPart(url, CURLUPART_HOST, host))
        return {};
    return part(url, CURLUPART_SCHEME) + "://" + part(url, CURLUPART_HOST) + request.target;
}

QByteArray followedAddress(const QByteArray& from, const QByteArray& location)
{
    const Url url(curl_url());
    constexpr unsigned encodeWhatIsNot = CURLU_URLENCODE | CURLU_ALLOW_SPACE;
    if (!setPart(url, CURLUPART_URL, from) || !setPart(url, CURLUPART_URL, location, encodeWhatIsNot))
        return {};
    const QByteArray scheme = part(url, CURLUPART_SCHEME);
    return scheme == "http" || scheme == "https" ? part(url, CURLUPART_URL) : QByteArray();
}
