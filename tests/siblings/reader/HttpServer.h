#pragma once

#include <functional>
#include <list>
#include <mutex>
#include <netinet/in.h>
#include <poll.h>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

// One client of the server below. What it sends may be anything.
class HttpConnection
{
public:
    explicit HttpConnection(int socket)
        : m_socket(socket)
    {
    }

    // False once the client, or the test, has gone.
    bool Send(std::string_view bytes) const
    {
        while (!bytes.empty()) {
            const ssize_t sent = ::send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (sent <= 0)
                return false;
            bytes.remove_prefix(static_cast<size_t>(sent));
        }
        return true;
    }

    // True if the client, or the test, goes in that time.
    bool EndsWithin(int milliseconds) const
    {
        pollfd wait { m_socket, POLLIN, 0 };
        return ::poll(&wait, 1, milliseconds) != 0;
    }

    // Up to the empty line.
    std::string Receive() const
    {
        std::string text;
        char byte = 0;
        while (!text.ends_with("\r\n\r\n") && ::recv(m_socket, &byte, 1, 0) == 1)
            text += byte;
        return text;
    }

private:
    int m_socket;
};

inline std::string HttpAnswer(
    std::string_view body, std::string_view headers = "", std::string_view status = "200 OK")
{
    return "HTTP/1.1 " + std::string(status) + "\r\nConnection: close\r\n" + std::string(headers)
        + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + std::string(body);
}

// A server on this machine alone that answers as the test says, each client on a thread of its own,
// and keeps what it was asked.
class HttpServer
{
public:
    // `target`: what stands behind the host, from "/" on; `request`: all lines of the request.
    using Answer = std::function<void(
        const std::string& target, const std::string& request, const HttpConnection& client)>;

    explicit HttpServer(Answer answer)
        : m_answer(std::move(answer))
        , m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_in address {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        ::bind(m_socket, reinterpret_cast<sockaddr*>(&address), length);
        ::listen(m_socket, 16);
        ::getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &length);
        m_host = "127.0.0.1:" + std::to_string(ntohs(address.sin_port));
        m_accepting = std::thread([this] { Accept(); });
    }

    ~HttpServer()
    {
        ::shutdown(m_socket, SHUT_RDWR);
        m_accepting.join();
        for (Client& client : m_clients) {
            ::shutdown(client.socket, SHUT_RDWR);
            client.thread.join();
            ::close(client.socket);
        }
        ::close(m_socket);
    }

    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    const std::string& Host() const { return m_host; }

    std::string Url(const std::string& target) const { return "http://" + m_host + target; }

    std::vector<std::string> Requests()
    {
        const std::lock_guard lock(m_lock);
        return m_requests;
    }

private:
    struct Client
    {
        int socket;
        std::thread thread;
    };

    void Accept()
    {
        for (;;) {
            const int socket = ::accept(m_socket, nullptr, nullptr);
            if (socket < 0)
                return;
            m_clients.push_back({ socket, std::thread([this, socket] { Serve(socket); }) });
        }
    }

    void Serve(int socket)
    {
        const HttpConnection client(socket);
        const std::string request = client.Receive();
        const size_t start = request.find(' ') + 1;
        {
            const std::lock_guard lock(m_lock);
            m_requests.push_back(request);
        }
        if (start > 0)
            m_answer(request.substr(start, request.find(' ', start) - start), request, client);
        ::shutdown(socket, SHUT_RDWR);
    }

    Answer m_answer;
    int m_socket;
    std::string m_host;
    std::list<Client> m_clients; // of the accepting thread until it has ended
    std::mutex m_lock; // of the requests
    std::vector<std::string> m_requests;
    std::thread m_accepting;
};
