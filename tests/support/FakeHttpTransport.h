#pragma once

#include "metadata/http/HttpTransport.h"
#include "support/OwnCopy.h"

#include <QList>

#include <functional>
#include <mutex>
#include <utility>

/// A transport without a network: it records the requests, and a function of the
/// test makes the answers, on the requests' own threads.
class FakeHttpTransport : public HttpTransport {
public:
    explicit FakeHttpTransport(std::function<HttpAnswer(const HttpRequest&)> answering)
        : answer(std::move(answering))
    {
    }

    HttpAnswer get(const HttpRequest& request) override
    {
        {
            const std::lock_guard lock(guard);
            recorded.append(request);
        }
        return answer(request);
    }
    void stop() override {}

    QList<HttpRequest> requests() const
    {
        const std::lock_guard lock(guard);
        return ownCopy(recorded);
    }

private:
    const std::function<HttpAnswer(const HttpRequest&)> answer;
    mutable std::mutex guard;
    QList<HttpRequest> recorded; ///< guarded
};
