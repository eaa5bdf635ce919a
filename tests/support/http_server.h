// A web server on this computer, for one test. It answers each request with what the test writes.
#pragma once

#include <winsock2.h>
// After winsock2.h, which it needs:
#include <windows.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace vxut::test {

// A connection to a client that has sent a request.
class HttpClient {
public:
    explicit HttpClient(SOCKET socket) : socket_(socket) {}

    // Returns false once the client has gone.
    bool Send(const std::string& bytes) const {
        for (size_t sent = 0; sent < bytes.size();) {
            const int now = send(socket_, bytes.data() + sent, static_cast<int>(bytes.size() - sent), 0);
            if (now <= 0) return false;
            sent += static_cast<size_t>(now);
        }
        return true;
    }
    // Ends the connection without the orderly end.
    void Reset() {
        const linger abort = {1, 0};
        setsockopt(socket_, SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&abort), sizeof abort);
    }

private:
    SOCKET socket_;
};

class HttpServer {
public:
    // answer runs on a thread of its own for each request. path is that of the request.
    using Answer = std::function<void(HttpClient& client, const std::string& path)>;

    explicit HttpServer(Answer answer) : answer_(std::move(answer)) {
        WSADATA data;
        WSAStartup(MAKEWORD(2, 2), &data);
        listener_ = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        int size = sizeof address;
        bind(listener_, reinterpret_cast<const sockaddr*>(&address), size);
        getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size);
        port_ = ntohs(address.sin_port);
        listen(listener_, 8);
        acceptor_ = std::thread([this] { Accept(); });
    }
    ~HttpServer() {
        isOver_ = true;
        closesocket(listener_);
        acceptor_.join();
        for (std::thread& thread : threads_) thread.join();
        WSACleanup();
    }
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    std::wstring Url(const std::wstring& path) const {
        return L"http://127.0.0.1:" + std::to_wstring(port_) + path;
    }
    // For answers that never end: until the server does.
    void Stall() const {
        while (!isOver_) Sleep(10);
    }
    int Requests() const { return requests_; }

private:
    void Accept() {
        for (SOCKET client; (client = accept(listener_, nullptr, nullptr)) != INVALID_SOCKET;)
            threads_.emplace_back([this, client] { Serve(client); });
    }

    void Serve(SOCKET socket) {
        std::string request;
        char bytes[4096];
        while (request.find("\r\n\r\n") == request.npos) {
            const int received = recv(socket, bytes, sizeof bytes, 0);
            if (received <= 0) break;
            request.append(bytes, static_cast<size_t>(received));
        }
        const size_t start = request.find(' ') + 1;
        HttpClient client(socket);
        ++requests_;
        if (start != 0) answer_(client, request.substr(start, request.find(' ', start) - start));
        closesocket(socket);
    }

    const Answer answer_;
    SOCKET listener_ = INVALID_SOCKET;
    unsigned port_ = 0;
    std::atomic<bool> isOver_{false};
    std::atomic<int> requests_{0};
    std::vector<std::thread> threads_;
    std::thread acceptor_;
};

// An answer with its length.
inline std::string HttpOk(const std::string& body, const std::string& headers = {}) {
    return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" + headers +
           "Connection: close\r\n\r\n" + body;
}

} // namespace vxut::test
