#pragma once

#include <QtNetwork>

/// A web host on this machine, in the event loop of the test, or a proxy for any host. What it does with a
/// page is told beforehand.
class WebHost : public QTcpServer {
  public:
    WebHost() {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this] {
            QTcpSocket* client = nextPendingConnection();
            // The head of a request comes in one piece.
            connect(client, &QTcpSocket::readyRead, client,
                    [this, client] { answer(*client, client->readAll().toStdString()); });
            connect(client, &QTcpSocket::disconnected, client, &QObject::deleteLater);
        });
    }

    struct Page {
        std::string body = {};
        std::string status = "200 OK";  ///< empty: takes the request and never answers
        size_t promised = 0;            ///< a length that the head claims; 0: the true one
    };
    std::map<std::string, Page> pages;  ///< others are not found
    std::vector<std::string> requests;  ///< heads

    std::string address() const { return "http://127.0.0.1:" + std::to_string(serverPort()); }

  private:
    void answer(QTcpSocket& client, const std::string& request) {
        requests.push_back(request);
        const size_t path = request.find(' ') + 1;
        const auto at = pages.find(request.substr(path, request.find(' ', path) - path));
        const Page page = at != pages.end() ? at->second : Page{"<h1>not here</h1>", "404 Not Found"};
        if (page.status.empty()) return;
        const size_t length = page.promised > 0 ? page.promised : page.body.size();
        client.write(QByteArray::fromStdString("HTTP/1.1 " + page.status + "\r\nContent-Length: " +
                                               std::to_string(length) + "\r\nConnection: close\r\n\r\n"));
        // The body comes in pieces, a moment apart.
        auto* const clock = new QTimer(&client);
        connect(clock, &QTimer::timeout, &client, [&client, body = page.body]() mutable {
            client.write(QByteArray::fromStdString(body.substr(0, 3000)));
            client.flush();
            body.erase(0, 3000);
            if (body.empty()) client.disconnectFromHost();
        });
        clock->start(2);
    }
};
