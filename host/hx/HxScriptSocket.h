#pragma once

#include "mc/McString.h"

#include <QByteArray>
#include <QObject>
#include <QTcpServer>

#include <functional>

class QTcpSocket;

/// Takes scripts from other processes of this machine: one script per line, answered with one line.
///
/// Listens on the loopback address only. Scripts run on the main thread between events; while the work area
/// is busy they wait. An answer is "0 TEXT" for a result and "1 TEXT" for an error, where a backslash and
/// the line ends of the text travel as \\, \n and \r.
class HxScriptSocket : public QObject
{
    Q_OBJECT

public:
    HxScriptSocket();

    /// Takes `port` or the next free one up to 20 above; false when all are taken.
    bool listen(int port);
    int port() const { return server.serverPort(); }

    /// Sends one script line to a listening process and waits for its answer, as long as the other side
    /// stays connected and `giveUp`, asked ten times a second, is false. Needs no event loop.
    ///
    /// returns true with the other side's result; false with a sentence that names host and port, when the
    /// script has several lines, nobody listens, the other side hangs up, or its script fails
    static bool send(
        const char* script, const char* host, int port, McString& answer,
        const std::function<bool()>& giveUp = [] { return false; });

private:
    void welcome();
    void serve(QTcpSocket* peer);

    QTcpServer server;
};
