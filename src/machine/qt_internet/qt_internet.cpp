#include "machine/qt_internet/qt_internet.h"

#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkProxyFactory>
#include <QNetworkReply>
#include <QTimer>
#include <functional>
#include <map>

namespace machine {

namespace {

using Reply = std::unique_ptr<QNetworkReply>;

/// A page of the maker is a line of text; what grows beyond this is none.
constexpr qint64 longest_page = 1 << 16;
/// Read ahead of the program, which takes little bites.
constexpr qint64 read_ahead = 1 << 18;

WinCode code_of(QNetworkReply::NetworkError error) {
    switch (error) {
        case QNetworkReply::NoError:
            return success;
        case QNetworkReply::ConnectionRefusedError:
            return internet_cannot_connect;
        case QNetworkReply::HostNotFoundError:
            return internet_no_such_host;
        case QNetworkReply::TimeoutError:
        case QNetworkReply::OperationCanceledError:  // nobody but the clock gives a request up while it is
                                                     // waited for
            return internet_timeout;
        case QNetworkReply::RemoteHostClosedError:
            return internet_connection_lost;
        default:
            return internet_failed;
    }
}

int status_of(const QNetworkReply& reply) {
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

bool is_page(const QNetworkReply& reply) { return status_of(reply) >= 200 && status_of(reply) < 300; }

}  // namespace

struct QtInternet::Private {
    explicit Private(std::chrono::milliseconds limit) : patience(limit) {
        QNetworkProxyFactory::setUseSystemConfiguration(true);
    }

    Reply request(std::string_view url, std::string_view agent) {
        QNetworkRequest wanted(QUrl(QString::fromLatin1(url.data(), static_cast<qsizetype>(url.size()))));
        wanted.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
        if (!agent.empty()) {
            wanted.setHeader(QNetworkRequest::UserAgentHeader,
                             QByteArray(agent.data(), static_cast<qsizetype>(agent.size())));
        }
        if (!manager) manager = std::make_unique<QNetworkAccessManager>();
        Reply reply(manager->get(wanted));
        reply->setReadBufferSize(read_ahead);
        return reply;
    }

    /// Until the condition holds or the answer is complete; gives up after a silence.
    void wait(QNetworkReply& reply, const std::function<bool()>& condition) const {
        QEventLoop loop;
        QTimer silence;
        silence.setSingleShot(true);
        silence.callOnTimeout(&reply, &QNetworkReply::abort);
        const auto look = [&] {
            silence.start(patience);
            if (condition() || reply.isFinished()) loop.quit();
        };
        QObject::connect(&reply, &QNetworkReply::metaDataChanged, &loop, look);
        QObject::connect(&reply, &QNetworkReply::readyRead, &loop, look);
        QObject::connect(&reply, &QNetworkReply::finished, &loop, look);
        silence.start(patience);
        if (!condition() && !reply.isFinished()) loop.exec(QEventLoop::ExcludeUserInputEvents);
    }

    std::chrono::milliseconds patience;
    std::unique_ptr<QNetworkAccessManager> manager;
    std::map<uint32_t, Reply> replies;
    uint32_t last_handle = 0;
};

QtInternet::QtInternet(std::chrono::milliseconds patience) : d_(std::make_unique<Private>(patience)) {}

QtInternet::~QtInternet() = default;

BasicResult<std::string, WinCode> QtInternet::fetch(std::string_view url) {
    const Reply reply = d_->request(url, "");
    d_->wait(*reply, [&] { return reply->bytesAvailable() > longest_page; });
    if (status_of(*reply) != 0 && !is_page(*reply)) return internet_no_such_page;
    if (reply->error() != QNetworkReply::NoError) return code_of(reply->error());
    if (!reply->isFinished()) return internet_failed;
    return reply->readAll().toStdString();
}

uint32_t QtInternet::open(std::string_view url, std::string_view agent) {
    Reply reply = d_->request(url, agent);
    d_->wait(*reply, [&] { return status_of(*reply) != 0; });
    if (status_of(*reply) == 0) return 0;
    d_->replies[++d_->last_handle] = std::move(reply);
    return d_->last_handle;
}

Internet::Chunk QtInternet::read(uint32_t handle, size_t most) {
    const auto at = d_->replies.find(handle);
    if (at == d_->replies.end()) return {invalid_handle, ""};
    QNetworkReply& reply = *at->second;
    d_->wait(reply, [&] { return reply.bytesAvailable() > 0; });
    if (reply.bytesAvailable() > 0) return {success, reply.read(static_cast<qint64>(most)).toStdString()};
    // An answer such as "not found" is an error to Qt; its body has been read like any other.
    const bool complete = reply.error() == QNetworkReply::NoError || !is_page(reply);
    return {complete ? success : code_of(reply.error()), ""};
}

void QtInternet::close(uint32_t handle) { d_->replies.erase(handle); }

}  // namespace machine
