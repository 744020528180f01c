#pragma once

#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <map>
#include <memory>
#include <string>
#include <vector>

/// A web host on this machine, in the event loop of the test. What it does with a page is told beforehand.
class WebHost : public QTcpServer {
  public:
    WebHost() {
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

    struct Page {
        std::string body = {};
        std::string status = "200 OK";
        size_t promised = 0;         ///< a length that the head claims; 0: the true one
        size_t bytes_per_piece = 0;  ///< pieces of this size, a moment apart; 0: all at once
        bool silent = false;         ///< takes the request and never answers
    };
    std::map<std::string, Page> pages;  ///< others are not found
    std::vector<std::string> requests;  ///< heads

    /// "127.0.0.1:port".
    std::string name() const { return "127.0.0.1:" + std::to_string(serverPort()); }

  private:
    void answer(QTcpSocket& client, const std::string& request) {
        requests.push_back(request);
        const size_t path = request.find(' ') + 1;
        const auto at = pages.find(request.substr(path, request.find(' ', path) - path));
        const Page page = at != pages.end() ? at->second : Page{"<h1>not here</h1>", "404 Not Found"};
        if (page.silent) return;
        const size_t length = page.promised > 0 ? page.promised : page.body.size();
        client.write(QByteArray::fromStdString("HTTP/1.1 " + page.status + "\r\nContent-Length: " +
                                               std::to_string(length) + "\r\nConnection: close\r\n\r\n"));
        auto* const clock = new QTimer(&client);
        auto rest = std::make_shared<std::string>(page.body);
        connect(clock, &QTimer::timeout, &client, [&client, clock, rest, page] {
            const size_t piece = page.bytes_per_piece > 0 ? page.bytes_per_piece : rest->size();
            client.write(QByteArray::fromStdString(rest->substr(0, piece)));
            client.flush();
            rest->erase(0, piece);
            if (!rest->empty()) return;
            clock->stop();
            client.disconnectFromHost();
        });
        clock->start(2);
    }
};
