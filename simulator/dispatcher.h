// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/command.h"
#include "simulator/httpfrontend.h"
#include "simulator/postoffice.h"
#include "simulator/script.h"
#include "simulator/waits.h"

#include <QMutex>

#include <map>

namespace Simulator {

/**
 * From an HTTP request to its reply: authentication, version, script, command.
 *
 * Owns the users with their mailboxes and devices. Requests are worked on one after the other, whatever
 * thread they come in. A command that waits for news lets the others pass and looks again with each change;
 * waiting for a delayed answer happens outside, in HttpFrontend.
 */
class Dispatcher
{
public:
    explicit Dispatcher(Script &script);

    /** Called in the thread of the request, set before the first one. */
    std::function<void(const RecordedRequest &)> onReceived;
    std::function<void(const RecordedRequest &)> onReplied;

    HttpReply answer(const HttpRequest &request);

    Mailbox &addUser(const QString &name, const QString &password);
    void setPassword(const QString &name, const QString &password);
    bool hasUser(const QString &name);
    Mailbox &mailbox(const QString &name);
    ServerPolicies policies(const QString &name);
    void changePolicies(const QString &name, const std::function<void(ServerPolicies &)> &change);
    void changeSettings(const std::function<void(ServerSettings &)> &change);
    void forgetDevices();
    /** Messages that have left the server. */
    QVector<OutboundMail> outbound();
    /** The time of all commands that wait is over. */
    void expireWaits() { mWaits.expireAll(); }
    /** No command waits any more, until resume(). */
    void stopWaits() { mWaits.stop(); }
    void resumeWaits() { mWaits.resume(); }

private:
    struct User
    {
        QString password;
        Mailbox mailbox;
        ServerPolicies policies;
        std::map<QString, DeviceState> devices;
    };

    RecordedRequest read(const HttpRequest &request);
    /** The own answer, as soon as there is one. */
    HttpReply decide(RecordedRequest &record, const Override &answer, Waits::Wait &wait);
    HttpReply decideNow(RecordedRequest &record, const Override &answer, bool isOverdue);
    HttpReply runCommand(RecordedRequest &record, const Override &answer, bool isOverdue);
    User &user(const QString &name) const;
    HttpReply demandReply(RecordedRequest &record, const CommandEntry &entry, int status) const;
    HttpReply optionsReply() const;
    User *authenticated(const RecordedRequest &record);

    Script &mScript;
    Waits mWaits;
    QMutex mMutex;
    /** Of the list of users, beside mMutex for those who change it: who has a mailbox stand still may look up
     * others, while a command that holds mMutex waits for it. */
    QMutex mUsersMutex;
    std::map<QString, std::unique_ptr<User>> mUsers;
    PostOffice mPost;
    QString mFirstUser;
    bool mHasOwnUsers = false;
    ServerSettings mSettings;
    int mLastNumber = 0;
    int mLastKey = 0;
};

} // namespace Simulator
