#include "support/TdsLoginCatcher.h"

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtEndian>
#include <utility>

namespace knjige::test
{
namespace
{

constexpr int waitMs = 5000; // for a client that stops halfway; no test waits on it
constexpr char preLogin = 0x12;
constexpr char login7 = 0x10;
constexpr char reply = 0x04;

bool readExactly(QTcpSocket& socket, qint64 size, QByteArray& into)
{
    while (into.size() < size) {
        if (socket.bytesAvailable() == 0 && !socket.waitForReadyRead(waitMs))
            return false;
        into += socket.read(size - into.size());
    }
    return true;
}

// One message of `type`: its packets' payloads up to the one marked last.
bool readMessage(QTcpSocket& socket, char type, QByteArray& payload)
{
    for (;;) {
        QByteArray header;
        if (!readExactly(socket, 8, header) || header[0] != type)
            return false;
        const int length = qFromBigEndian<quint16>(header.constData() + 2);
        QByteArray body;
        if (length < 8 || !readExactly(socket, length - 8, body))
            return false;
        payload += body;
        if (header[1] & 0x01)
            return true;
    }
}

// The server's pre-login answer: version 0.0.0.0, encryption NOT_SUP.
QByteArray preLoginReply()
{
    const char payload[] = { 0x00, 0, 11, 0, 6, 0x01, 0, 17, 0, 1, char(0xff), 0, 0, 0, 0, 0, 0, 0x02 };
    const char header[] = { reply, 0x01, 0, char(8 + sizeof payload), 0, 0, 1, 0 }; // last packet, its length
    return QByteArray(header, sizeof header) + QByteArray(payload, sizeof payload);
}

// A text of the record: its offset and length in characters at `at`, UTF-16LE.
QString field(const QByteArray& record, int at, bool password)
{
    // Byte by byte: GCC under the sanitizers cannot see that the record is long enough.
    const auto u16 = [&](int i) { return int(quint8(record.at(i))) | int(quint8(record.at(i + 1))) << 8; };
    const int offset = u16(at);
    const int chars = u16(at + 2);
    if (offset + 2 * chars > record.size())
        return QStringLiteral("<outside the record>");
    QByteArray bytes = record.mid(offset, 2 * chars);
    if (password) // each byte's halves swapped, then XOR 0xA5
        for (char& b : bytes) {
            const auto x = quint8(b) ^ 0xA5;
            b = char(((x << 4) | (x >> 4)) & 0xff);
        }
    return QString::fromUtf16(reinterpret_cast<const char16_t*>(bytes.constData()), chars);
}

// The login record of a LOGIN7 message (the TDS packet headers taken off), or
// false when the bytes are no such record.
bool decodeTdsLogin(const QByteArray& record, TdsLogin& login)
{
    if (record.size() < 94 || qFromLittleEndian<quint32>(record.constData()) != quint32(record.size()))
        return false;
    login.user = field(record, 40, false);
    login.password = field(record, 44, true);
    login.server = field(record, 52, false);
    login.database = field(record, 68, false);
    return true;
}

} // namespace

TdsLoginCatcher::TdsLoginCatcher()
{
    std::promise<void> listening;
    std::future<void> ready = listening.get_future();
    m_thread = std::thread([this, &listening] { serve(&listening); });
    ready.wait();
}

TdsLoginCatcher::~TdsLoginCatcher()
{
    m_stop = true;
    m_thread.join();
}

std::vector<TdsLogin> TdsLoginCatcher::takeLogins()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return std::exchange(m_logins, {});
}

void TdsLoginCatcher::serve(std::promise<void>* listening)
{
    QTcpServer server;
    QTcpServer decoy;
    server.listen(QHostAddress::LocalHost);
    decoy.listen(QHostAddress::LocalHost);
    m_port = server.serverPort();
    m_decoyPort = decoy.serverPort();
    listening->set_value();
    while (!m_stop) {
        if (decoy.waitForNewConnection(0)) {
            delete decoy.nextPendingConnection();
            ++m_decoyVisits;
        }
        if (!server.waitForNewConnection(20))
            continue;
        QTcpSocket* socket = server.nextPendingConnection();
        QByteArray request;
        QByteArray record;
        TdsLogin login;
        if (readMessage(*socket, preLogin, request)) {
            socket->write(preLoginReply());
            socket->waitForBytesWritten(waitMs);
            if (readMessage(*socket, login7, record) && decodeTdsLogin(record, login)) {
                login.port = socket->localPort();
                std::lock_guard<std::mutex> lock(m_mutex);
                m_logins.push_back(login);
            }
        }
        socket->abort();
        delete socket;
    }
}

} // namespace knjige::test
