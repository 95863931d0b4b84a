#pragma once

#include <QByteArray>
#include <QList>

/// One request as it arrived at the loopback.
struct ServedRequest {
    bool secure = false;
    QByteArray target;
    bool askedAsProxy = false; ///< the target came with scheme and host in front
    QByteArray host;           ///< of the Host line
    QList<QByteArray> headers; ///< whole lines, in their order

    /// The values of all lines of this name, in their order.
    QList<QByteArray> values(const QByteArray& name) const;
};

/// One answer, with what may go wrong on its way.
struct ServedAnswer {
    enum class Framing { Length, Chunked, UntilClose };

    int status = 200;
    QList<QByteArray> headers; ///< whole lines, beside those of the framing
    QByteArray body;
    Framing framing = Framing::Length;
    qint64 claimedLength = -1; ///< stands in the length line in place of the true one
    qsizetype breakAfter = -1; ///< the connection breaks after so many bytes of the body
    qsizetype stallAfter = -1; ///< falls silent after so many bytes of the body
    bool silent = false;       ///< takes the request and never answers, or no further than raw
    bool dropped = false;      ///< takes the request and hangs up
    bool endless = false;      ///< sends the body again and again
    int pieceBytes = 0;        ///< sends the body in pieces of so many bytes...
    int pieceMilliseconds = 0; ///< ...with this pause in front of each
    QByteArray raw;            ///< sent in place of head and body, then hangs up unless silent

    /// Status line and headers, with the blank line.
    QByteArray head() const;
};

ServedAnswer page(const QByteArray& body);
ServedAnswer json(const QByteArray& body);
ServedAnswer image(const QByteArray& body);
/// An error with a page of HTML, as a web server of any service sends it.
ServedAnswer errorPage(int status);
/// Takes the request and never answers.
ServedAnswer silence();
ServedAnswer redirect(const QByteArray& location, int status = 302);
