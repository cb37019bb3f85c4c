#include "hx/HxScriptSocket.h"

#include "hx/HxInterpreter.h"
#include "hx/HxWorkArea.h"

#include <QCoreApplication>
#include <QHostAddress>
#include <QPointer>
#include <QTcpSocket>
#include <QTimer>

#include <tcl.h>

namespace {

constexpr int kPortsToTry = 21;                   // the port that was asked for and 20 above
constexpr int kBusyRetryMs = 50;                  // a waiting script looks again this often
constexpr qint64 kLongestLine = 16 * 1024 * 1024; // keeps a foreign client from filling the memory
constexpr int kConnectMs = 5000;
constexpr int kAnswerPollMs = 100;

QByteArray escaped(QByteArray text)
{
    return text.replace("\\", "\\\\").replace("\n", "\\n").replace("\r", "\\r");
}

QByteArray unescaped(const QByteArray& line)
{
    QByteArray text;
    for (qsizetype i = 0; i < line.size(); ++i) {
        if (line[i] != '\\' || i + 1 == line.size()) {
            text += line[i];
            continue;
        }
        const char escape = line[++i];
        text += escape == 'n' ? '\n' : escape == 'r' ? '\r' : escape;
    }
    return text;
}

QByteArray answerTo(const QByteArray& script)
{
    McString result;
    HxInterpreter* interpreter = HxInterpreter::getTheInterpreter();
    const int code = interpreter->eval(script.constData(), result);
    // A script that ends the program has done what it was sent for.
    if (interpreter->quitCode()) return "0 \n";
    return QByteArray::number(code) + ' ' + escaped(static_cast<const char*>(result)) + '\n';
}

} // namespace

HxScriptSocket::HxScriptSocket()
{
    connect(&server, &QTcpServer::newConnection, this, &HxScriptSocket::welcome);
}

bool HxScriptSocket::listen(int port)
{
    for (int candidate = port; candidate < port + kPortsToTry && candidate <= 65535; ++candidate)
        if (candidate > 0 && server.listen(QHostAddress::LocalHost, static_cast<quint16>(candidate)))
            return true;
    return false;
}

void HxScriptSocket::welcome()
{
    while (QTcpSocket* peer = server.nextPendingConnection()) {
        connect(peer, &QTcpSocket::readyRead, this, [this, peer] { serve(peer); });
        connect(peer, &QTcpSocket::disconnected, peer, &QObject::deleteLater);
        serve(peer);
    }
}

void HxScriptSocket::serve(QTcpSocket* peer)
{
    if (HxWorkArea::getTheWorkArea()->busyDepth() > 0) {
        QTimer::singleShot(kBusyRetryMs, peer, [this, peer] { serve(peer); });
        return;
    }
    // A script may run an event loop of its own, and the other side may hang up in it.
    const QPointer<QTcpSocket> living(peer);
    while (living && peer->canReadLine()) {
        QByteArray line = peer->readLine();
        while (line.endsWith('\n') || line.endsWith('\r')) line.chop(1);
        const QByteArray answer = answerTo(line);
        if (!living) return;
        peer->write(answer);
        peer->flush();
        if (const auto code = HxInterpreter::getTheInterpreter()->quitCode()) {
            peer->disconnectFromHost();
            QCoreApplication::exit(*code);
            return;
        }
    }
    if (living && peer->bytesAvailable() > kLongestLine) peer->abort();
}

bool HxScriptSocket::send(const char* script, const char* host, int port, McString& answer,
                          const std::function<bool()>& giveUp)
{
    const std::string target = std::string(host) + ":" + std::to_string(port);
    const QByteArray line(script);
    if (line.contains('\n') || line.contains('\r')) {
        answer = "A script that is sent must be a single line.";
        return false;
    }

    QTcpSocket socket;
    socket.connectToHost(QString::fromUtf8(host), static_cast<quint16>(port));
    if (!socket.waitForConnected(kConnectMs)) {
        answer = (target + ": " + socket.errorString().toStdString() + ".").c_str();
        return false;
    }
    socket.write(line + '\n');

    while (!socket.canReadLine() && socket.state() == QAbstractSocket::ConnectedState && !giveUp())
        socket.waitForReadyRead(kAnswerPollMs);
    if (!socket.canReadLine()) {
        answer = (target + ": no answer.").c_str();
        return false;
    }
    QByteArray reply = socket.readLine();
    reply.chop(1);
    const QByteArray text = unescaped(reply.mid(2));
    const bool succeeded = reply.startsWith("0 ");
    answer = succeeded ? text.constData() : (target + ": " + text.toStdString()).c_str();
    return succeeded;
}
