#pragma once

#include <QString>
#include <atomic>
#include <future>
#include <mutex>
#include <thread>
#include <vector>

namespace knjige::test
{

// What a client put into the login record of the TDS protocol.
struct TdsLogin {
    quint16 port = 0; // where the client came
    QString server;
    QString user;
    QString password;
    QString database;
};

// A SQL Server stand-in on two loopback ports, in a thread of its own: on port() it
// answers the pre-login (no encryption) and reads the login that follows, then closes
// the connection, so no login ever succeeds; on decoyPort() it only counts who came.
class TdsLoginCatcher
{
public:
    TdsLoginCatcher();
    ~TdsLoginCatcher();
    TdsLoginCatcher(const TdsLoginCatcher&) = delete;
    TdsLoginCatcher& operator=(const TdsLoginCatcher&) = delete;

    quint16 port() const { return m_port; }
    quint16 decoyPort() const { return m_decoyPort; }
    // The logins read since the last call.
    std::vector<TdsLogin> takeLogins();
    int decoyVisits() const { return m_decoyVisits; }

private:
    void serve(std::promise<void>* listening);

    quint16 m_port = 0;
    quint16 m_decoyPort = 0;
    std::atomic<bool> m_stop { false };
    std::atomic<int> m_decoyVisits { 0 };
    std::mutex m_mutex;
    std::vector<TdsLogin> m_logins;
    std::thread m_thread;
};

} // namespace knjige::test
