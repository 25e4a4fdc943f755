// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/dispatcher.h"

#include "simulator/multipart.h"
#include "simulator/protocolversion.h"
#include "simulator/wbxmlcodec.h"
#include "simulator/wbxmltokens.h"

#include <QMutexLocker>

namespace Simulator {
namespace {

const char wbxmlType[] = "application/vnd.ms-sync.wbxml";
/** That a device without a policy key is served no more; before 14.0 it is told so by HTTP 403. */
constexpr int keylessDeviceStatus = 141;

struct Credentials
{
    QString user;
    QString password;
};

Credentials credentials(const RecordedRequest &record)
{
    const QByteArray header = record.header("Authorization");
    if (!header.startsWith("Basic "))
        return {};
    const QString pair = QString::fromUtf8(QByteArray::fromBase64(header.mid(6)));
    const QString name = pair.section(QLatin1Char(':'), 0, 0);
    return { name.section(QLatin1Char('\\'), -1), pair.section(QLatin1Char(':'), 1) };
}

/** Null if the request brings none. */
QString policyKey(const RecordedRequest &record)
{
    const QByteArray key = record.header("X-MS-PolicyKey");
    return key.isNull() ? QString() : QString::fromUtf8(key);
}

HttpReply plainReply(int status, const HttpHeaders &headers = {})
{
    HttpReply reply;
    reply.status = status;
    reply.headers = headers;
    return reply;
}

HttpReply documentReply(RecordedRequest &record, const WbxmlNode &document)
{
    HttpReply reply;
    reply.contentType = wbxmlType;
    reply.body = WbxmlCodec::encode(document);
    record.replyDocument = document;
    return reply;
}

const CommandEntry *commandEntry(const QString &name)
{
    for (const CommandEntry &entry : commandTable()) {
        if (name == QLatin1String(entry.name))
            return &entry;
    }
    return nullptr;
}

WbxmlNode statusDocument(const CommandEntry &entry, int status)
{
    WbxmlNode root { QLatin1String(entry.root) };
    root.append(QStringLiteral("Status"), status);
    return root;
}

/** Names of elements that the version does not know yet or any more. */
QStringList foreignElements(const WbxmlNode &node, int version)
{
    QStringList names;
    const auto token = WbxmlTokens::find(node.name());
    if (!token || !WbxmlTokens::existsAt(*token, version))
        names.append(node.name());
    for (const WbxmlNode &child : node.children())
        names += foreignElements(child, version);
    return names;
}

} // namespace

Dispatcher::Dispatcher(Script &script)
    : mScript(script)
{
    addUser(QStringLiteral("user"), QStringLiteral("secret"));
    mHasOwnUsers = false;
    mSettings.versions = protocolVersions();
    for (const CommandEntry &entry : commandTable())
        mSettings.commands.append(QLatin1String(entry.name));
}

Mailbox &Dispatcher::addUser(const QString &name, const QString &password)
{
    const QMutexLocker lock(&mMutex);
    const QMutexLocker usersLock(&mUsersMutex);
    if (!mHasOwnUsers) {
        mUsers.clear();
        mPost.clear();
    }
    if (mUsers.empty())
        mFirstUser = name;
    mHasOwnUsers = true;
    std::unique_ptr<User> &user = mUsers[name];
    if (!user) {
        user = std::make_unique<User>();
        user->mailbox.setOnChanged([this] { mWaits.tellNews(); });
        mPost.addUser(name, &user->mailbox);
    }
    user->password = password;
    return user->mailbox;
}

void Dispatcher::setPassword(const QString &name, const QString &password)
{
    const QMutexLocker lock(&mMutex);
    mUsers.at(name)->password = password;
}

bool Dispatcher::hasUser(const QString &name)
{
    const QMutexLocker lock(&mMutex);
    return mUsers.count(name) != 0;
}

Mailbox &Dispatcher::mailbox(const QString &name)
{
    const QMutexLocker lock(&mUsersMutex);
    return user(name).mailbox;
}

Dispatcher::User &Dispatcher::user(const QString &name) const
{
    return *mUsers.at(name.isEmpty() ? mFirstUser : name);
}

ServerPolicies Dispatcher::policies(const QString &name)
{
    const QMutexLocker lock(&mMutex);
    return user(name).policies;
}

void Dispatcher::changePolicies(const QString &name, const std::function<void(ServerPolicies &)> &change)
{
    const QMutexLocker lock(&mMutex);
    change(user(name).policies);
}

void Dispatcher::changeSettings(const std::function<void(ServerSettings &)> &change)
{
    const QMutexLocker lock(&mMutex);
    change(mSettings);
}

void Dispatcher::forgetDevices()
{
    const QMutexLocker lock(&mMutex);
    for (auto &user : mUsers)
        user.second->devices.clear();
    mWaits.tellNews();
}

QVector<OutboundMail> Dispatcher::outbound()
{
    const QMutexLocker lock(&mMutex);
    return mPost.outbound();
}

HttpReply Dispatcher::answer(const HttpRequest &request)
{
    RecordedRequest record = read(request);
    Waits::Wait wait = mWaits.prepare(request.isClientGone);
    onReceived(record);
    const Override answer = mScript.answerTo(record);
    HttpReply reply;
    if (answer.mReply) {
        reply.status = answer.mReply->httpStatus;
        reply.contentType = answer.mReply->contentType;
        reply.body = answer.mReply->body;
        record.replyDocument = answer.mReply->document;
    } else {
        reply = decide(record, answer, wait);
    }
    reply.headers += answer.mHeaders;
    reply.transport = answer.mTransport;
    record.replyStatus = reply.status;
    record.replyHeaders = reply.headers;
    record.replyBody = reply.body;
    if (!reply.transport.drop && !reply.transport.dropSilently && !reply.transport.hang)
        reply.onSending = [this, record] {
            onReplied(record);
        };
    return reply;
}

RecordedRequest Dispatcher::read(const HttpRequest &request)
{
    RecordedRequest record;
    {
        const QMutexLocker lock(&mMutex);
        record.number = ++mLastNumber;
    }
    record.verb = request.verb;
    record.url = QUrl::fromEncoded(request.target);
    record.headers = request.headers;
    record.body = request.body;
    record.command =
        request.verb == QLatin1String("OPTIONS") ? request.verb : record.queryItem(QStringLiteral("Cmd"));
    record.deviceId = record.queryItem(QStringLiteral("DeviceId"));
    record.user = credentials(record).user;
    record.version = versionFromText(QString::fromLatin1(record.header("MS-ASProtocolVersion")));
    if (record.header("Content-Type").startsWith(wbxmlType) && !record.body.isEmpty()) {
        const WbxmlCodec::Decoded decoded = WbxmlCodec::decode(record.body);
        record.document = decoded.root;
        record.documentError = decoded.error;
    }
    return record;
}

Dispatcher::User *Dispatcher::authenticated(const RecordedRequest &record)
{
    const auto found = mUsers.find(record.user);
    return found != mUsers.end() && found->second->password == credentials(record).password
        ? found->second.get()
        : nullptr;
}

HttpReply Dispatcher::decide(RecordedRequest &record, const Override &answer, Waits::Wait &wait)
{
    for (bool isOverdue = false;;) {
        mWaits.look(wait);
        HttpReply reply;
        {
            const QMutexLocker lock(&mMutex);
            reply = decideNow(record, answer, isOverdue);
        }
        if (!reply.wait)
            return reply;
        if (wait.number == 0)
            mWaits.begin(wait, record.user + QLatin1Char('/') + record.deviceId);
        isOverdue = !mWaits.waitForNews(wait, *reply.wait);
    }
}

HttpReply Dispatcher::decideNow(RecordedRequest &record, const Override &answer, bool isOverdue)
{
    HttpReply reply;
    if (!authenticated(record))
        reply = plainReply(401, { { "WWW-Authenticate", "Basic realm=\"127.0.0.1\"" } });
    else if (record.verb == QLatin1String("OPTIONS"))
        reply = optionsReply();
    else if (record.verb != QLatin1String("POST"))
        reply = plainReply(405);
    else
        reply = runCommand(record, answer, isOverdue);
    reply.headers += QPair<QByteArray, QByteArray>("MS-Server-ActiveSync", "15.20");
    return reply;
}

HttpReply Dispatcher::demandReply(RecordedRequest &record, const CommandEntry &entry, int status) const
{
    if (record.version >= Version140 && entry.root)
        return documentReply(record, statusDocument(entry, status));
    return plainReply(status == keylessDeviceStatus ? 403 : 449);
}

HttpReply Dispatcher::optionsReply() const
{
    QStringList versions;
    for (const int version : mSettings.versions)
        versions.append(versionText(version));
    return plainReply(200,
        { { "MS-ASProtocolVersions", versions.join(QLatin1Char(',')).toLatin1() },
            { "MS-ASProtocolCommands", mSettings.commands.join(QLatin1Char(',')).toLatin1() },
            { "Allow", "OPTIONS,POST" }, { "Public", "OPTIONS,POST" } });
}

HttpReply Dispatcher::runCommand(RecordedRequest &record, const Override &answer, bool isOverdue)
{
    const CommandEntry *entry = commandEntry(record.command);
    if (!record.documentError.isEmpty() || record.deviceId.isEmpty()
        || !mSettings.versions.contains(record.version)) {
        mScript.addFailure(QStringLiteral("request %1 (%2): a bad body, device or version: %3")
                               .arg(record.number)
                               .arg(record.command, record.documentError));
        return plainReply(400);
    }
    if (!entry || !mSettings.commands.contains(record.command) || record.version > entry->lastVersion)
        return plainReply(501);
    if (answer.mTopStatus != 0)
        return documentReply(record, statusDocument(*entry, answer.mTopStatus));

    const QStringList foreign = foreignElements(record.document, record.version);
    QStringList failures;
    if (!record.document.isNull() && !foreign.isEmpty())
        failures.append(
            QStringLiteral("elements that this version does not know: ") + foreign.join(QLatin1Char(' ')));
    User *user = authenticated(record);
    DeviceState &device = user->devices[record.deviceId];
    if (entry->handler != handleProvision) {
        const int complaint =
            user->policies.complaint(record.deviceId, device.provision, policyKey(record), record.version);
        if (complaint != 0)
            return demandReply(record, *entry, complaint);
    }
    CommandReply reply;
    user->mailbox.atomically([&] {
        reply = entry->handler({ record, mSettings, answer, user->mailbox, device, user->policies, mPost,
            mLastKey, failures, isOverdue });
    });
    for (const QString &failure : qAsConst(failures))
        mScript.addFailure(
            QStringLiteral("request %1 (%2): %3").arg(record.number).arg(record.command, failure));
    if (reply.wait) {
        HttpReply waiting;
        waiting.wait = reply.wait;
        return waiting;
    }
    if (answer.mEdit)
        answer.mEdit(reply.document);
    HttpReply result =
        reply.document.isNull() ? plainReply(reply.httpStatus) : documentReply(record, reply.document);
    if (reply.isMultipart) {
        result.contentType = Multipart::contentType;
        result.body = Multipart::join(reply.document, reply.parts);
    } else if (!reply.contentType.isEmpty()) {
        result.contentType = reply.contentType;
        result.body = reply.body;
    }
    return result;
}

} // namespace Simulator
