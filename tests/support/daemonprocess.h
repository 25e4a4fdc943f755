// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QDBusPendingReply>
#include <QMap>
#include <QObject>
#include <QProcessEnvironment>
#include <QScopedPointer>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

class EasDBusInterfaceProxy;
class QProcess;

/**
 * The daemon as a process of its own on the private bus, over the data of the test process's home. Its delays
 * between attempts are short. It is killed with the object and with the test process.
 */
class DaemonProcess : public QObject
{
    Q_OBJECT

public:
    static constexpr int Died = -2000;
    static constexpr int NeverEnded = -1000;

    /** The name of the program, as FaultShim wants it. */
    static QString program();

    explicit DaemonProcess(const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment());
    ~DaemonProcess() override;

    /** Waits until it serves its clients; false if it died before. */
    bool start();
    /** Starts it if need be, runs a full sync to its end and returns its status, Died or NeverEnded. */
    int sync(EasAccountId accountId);
    /** The same for the part of a message. */
    int downloadPart(EasAccountId accountId, qulonglong messageId, const QString &location);
    /** The same for the answer to an invitation. */
    int answerMeeting(EasAccountId accountId, qulonglong messageId, int response, qulonglong replyId);
    int answerEvent(EasAccountId accountId, const QString &eventId, int response, qulonglong replyId);
    /** The same for a message of the Outbox. */
    int sendMail(EasAccountId accountId, qulonglong messageId);
    void kill();
    /** SIGKILL so long after the start, by a thread that no event loop delays. */
    void killAfterStart(std::chrono::microseconds delay) { mLife = delay; }
    bool hasDied() const;
    qint64 processId() const;

    /** What it has logged so far. */
    QByteArray log() const { return mLog; }

private:
    using Call = std::function<QDBusPendingReply<qulonglong>(EasDBusInterfaceProxy &)>;

    int runRequest(const Call &call);
    void connectToService();
    void startTimer();
    void stopTimer();

    QScopedPointer<QProcess> mProcess;
    QScopedPointer<EasDBusInterfaceProxy> mProxy;
    QMap<qulonglong, int> mFinished;
    QByteArray mLog;

    std::optional<std::chrono::microseconds> mLife;
    std::mutex mMutex;
    std::condition_variable mStopped;
    bool mStopTimer = false;
    std::thread mTimer;
};
