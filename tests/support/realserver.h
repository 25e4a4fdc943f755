// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QDir>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/**
 * A server of somebody else's making, with mailboxes, for one test class.
 *
 * Its scripts stand beside the checkout in "shared/realserver", or where FENNEL_REALSERVER says. It is
 * started with data and ports of its own, so that several can run side by side. When the process of the test
 * ends in whatever way, the server is stopped and its data are removed.
 */
class RealServer
{
public:
    RealServer() = default;
    ~RealServer();
    Q_DISABLE_COPY(RealServer)

    /** Why it cannot be had here; an empty text if it can. */
    static QString obstacle();

    /** False, with the reason as a warning, if it does not come up. */
    bool start();

    static QString host() { return QStringLiteral("127.0.0.1"); }
    int httpPort() const { return mBasePort; }
    int httpsPort() const { return mBasePort + 1; }
    int imapPort() const { return mBasePort + 3; }
    static QString password() { return QStringLiteral("secret"); }
    static QString address(const QString &user) { return user + QStringLiteral("@example.org"); }

    /** Fills a folder, which is made if it is not there, with messages of many kinds. */
    bool seed(const QString &user, int count, const QString &folder = QStringLiteral("INBOX")) const;

    /** Fills the calendar; the same events each time, as seen from the week before this one. */
    bool seedEvents(const QString &user, int count) const;

    /** Fills the address book; the same contacts each time. */
    bool seedContacts(const QString &user, int count) const;

    /** The requests as the server has read them, in XML, since the last call of forgetRequests(). */
    QStringList requests(const QString &rootElement) const;
    void forgetRequests();

private:
    bool run(const QString &script, const QStringList &arguments, int timeout) const;
    void prepare(QProcess &process) const;
    QString logPath() const;

    QTemporaryDir mState { QDir::tempPath() + QStringLiteral("/fennel-realserver-XXXXXX") };
    int mBasePort = 0;
    qint64 mLogStart = 0;
    QProcess mGuard;
};
