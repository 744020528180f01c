#include "internet/web_host.h"

#include <QTcpSocket>
#include <QTimer>
#include <memory>

WebHost::WebHost() {
    listen(QHostAddress::LocalHost);
    connect(this, &QTcpServer::newConnection, this, [this] {
        QTcpSocket* client = nextPendingConnection();
        auto request = std::make_shared<std::string>();
        connect(client, &QTcpSocket::readyRead, client, [this, client, request] {
            *request += client->readAll().toStdString();
            if (request->ends_with("\r\n\r\n")) answer(*client, std::exchange(*request, ""));
        });
        connect(client, &QTcpSocket::disconnected, client, &QObject::deleteLater);
    });
}

std::string WebHost::name() const { return "127.0.0.1:" + std::to_string(serverPort()); }

void WebHost::answer(QTcpSocket& client, const std::string& request) {
    requests.push_back(request);
    const size_t path_at = request.find(' ') + 1;
    const std::string path = request.substr(path_at, request.find(' ', path_at) - path_at);
    const auto at = pages.find(path);
    const Page page = at != pages.end() ? at->second : Page{"<h1>not here</h1>", "404 Not Found"};
    if (page.silent) return;
    const size_t length = page.promised > 0 ? page.promised : page.body.size();
    client.write(QByteArray::fromStdString("HTTP/1.1 " + page.status +
                                           "\r\nContent-Type: text/plain\r\nContent-Length: " +
                                           std::to_string(length) + "\r\nConnection: close\r\n\r\n"));
    if (page.bytes_per_piece == 0) {
        client.write(QByteArray::fromStdString(page.body));
        client.disconnectFromHost();
        return;
    }
    auto* const clock = new QTimer(&client);
    auto rest = std::make_shared<std::string>(page.body);
    connect(clock, &QTimer::timeout, &client, [&client, clock, rest, page] {
        const std::string piece = rest->substr(0, static_cast<size_t>(page.bytes_per_piece));
        rest->erase(0, piece.size());
        client.write(QByteArray::fromStdString(piece));
        client.flush();
        if (!rest->empty()) return;
        clock->stop();
        client.disconnectFromHost();
    });
    clock->start(2);
}
