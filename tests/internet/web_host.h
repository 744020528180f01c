#pragma once

#include <QTcpServer>
#include <map>
#include <string>
#include <vector>

/// A web host on this machine, in the event loop of the test. What it does with a page is told beforehand.
class WebHost : public QTcpServer {
  public:
    WebHost();

    struct Page {
        std::string body = {};
        std::string status = "200 OK";
        size_t promised = 0;      ///< a length that the head claims; 0: the true one
        int bytes_per_piece = 0;  ///< pieces of this size, a moment apart; 0: all at once
        bool silent = false;      ///< takes the request and never answers
    };
    std::map<std::string, Page> pages;  ///< others are not found
    std::vector<std::string> requests;  ///< heads

    /// "127.0.0.1:port".
    std::string name() const;

  private:
    void answer(class QTcpSocket& client, const std::string& request);
};
