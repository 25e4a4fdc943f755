// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/devicestate.h"
#include "simulator/directory.h"
#include "simulator/override.h"
#include "simulator/postoffice.h"
#include "simulator/serverpolicies.h"

#include <QStringList>

#include <optional>

namespace Simulator {

struct ServerSettings
{
    QVector<int> versions;
    QStringList commands;
    int windowSize = 100;
    bool reportStaleHierarchy = false;
    bool emptyReplies = true;
    int shortestHeartbeat = 60; ///< seconds
    int longestHeartbeat = 3540; ///< seconds
    int maxPingFolders = 200;
    Directory directory;
    qint64 largestMessage = 0; ///< bytes that a user may send at once; 0: any
    qint64 mailboxQuota = 0; ///< bytes of all messages of a user; 0: no limit
};

/** What the handler of a command works with; everything stands still while it runs. */
struct CommandContext
{
    const RecordedRequest &request;
    const ServerSettings &settings;
    const Override &answer; ///< statuses to give in place of the own ones
    Mailbox &mailbox;
    DeviceState &device;
    ServerPolicies &policies;
    PostOffice &post;
    int &lastKey; ///< counts over the whole server, so that no key ever comes twice
    QStringList &failures; ///< what the client did against the protocol
    bool isOverdue = false; ///< the command has waited for as long as it was asked to

    QString nextKey() const { return QString::number(++lastKey); }
    int version() const { return request.version; }
};

struct CommandReply
{
    int httpStatus = 200;
    WbxmlNode document;
    bool isMultipart = false;
    QVector<QByteArray> parts; ///< follow the document in a multipart reply
    QByteArray contentType; ///< with @ref body, in place of a document
    QByteArray body;
    std::optional<int> wait; ///< nothing to answer yet: ask again after news, or after so many seconds

    static CommandReply of(const WbxmlNode &document)
    {
        CommandReply reply;
        reply.document = document;
        return reply;
    }
};

using CommandHandler = CommandReply (*)(const CommandContext &);

CommandReply handleFolderSync(const CommandContext &context);
CommandReply handleFolderCreate(const CommandContext &context);
CommandReply handleFolderDelete(const CommandContext &context);
CommandReply handleFolderUpdate(const CommandContext &context);
CommandReply handleSync(const CommandContext &context);
CommandReply handleMoveItems(const CommandContext &context);
CommandReply handleItemOperations(const CommandContext &context);
CommandReply handleGetAttachment(const CommandContext &context);
CommandReply handleProvision(const CommandContext &context);
CommandReply handlePing(const CommandContext &context);
CommandReply handleMeetingResponse(const CommandContext &context);
CommandReply handleSearch(const CommandContext &context);
CommandReply handleFind(const CommandContext &context);
CommandReply handleSettings(const CommandContext &context);
CommandReply handleResolveRecipients(const CommandContext &context);
CommandReply handleSendMail(const CommandContext &context);
CommandReply handleSmartReply(const CommandContext &context);
CommandReply handleSmartForward(const CommandContext &context);

/** The commands in the order in which OPTIONS names them. */
struct CommandEntry
{
    const char *name;
    CommandHandler handler;
    const char *root; ///< of a reply that says a status and nothing more
    int lastVersion; ///< the command is gone after this version
};
const QVector<CommandEntry> &commandTable();

} // namespace Simulator
