// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QLatin1String>

class QObject;

/** The literals of the wire protocol and the limits that all requests share. */
namespace ProtocolUtils {

/** The string class measures a text in a way that not every compiler takes as constant; an array knows. */
template <int Size> constexpr QLatin1String latin1(const char (&text)[Size])
{
    return QLatin1String(text, Size - 1);
}

inline constexpr QLatin1String PolicyType = latin1("MS-EAS-Provisioning-WBXML");
inline constexpr QLatin1String DefaultPolicyKey = latin1("0");
inline constexpr QLatin1String InitialSyncKey = latin1("0");

inline constexpr QLatin1String ClassEmail = latin1("Email");
inline constexpr QLatin1String ClassContacts = latin1("Contacts");
inline constexpr QLatin1String ClassCalendar = latin1("Calendar");
inline constexpr QLatin1String ClassTasks = latin1("Tasks");
inline constexpr QLatin1String StorageMailbox = latin1("Mailbox");

inline constexpr QLatin1String ContentTypeMultiPart = latin1("application/vnd.ms-sync.multipart");
inline constexpr QLatin1String ContentTypeMessage = latin1("message/rfc822");
inline constexpr QLatin1String ContentTypeWbxml = latin1("application/vnd.ms-sync.wbxml");

inline constexpr QLatin1String CommandAttendeesAvailable = latin1("ResolveRecipients");
inline constexpr QLatin1String CommandSettings = latin1("Settings");
inline constexpr QLatin1String CommandFind = latin1("Find");
inline constexpr QLatin1String CommandSearch = latin1("Search");
inline constexpr QLatin1String CommandPing = latin1("Ping");
inline constexpr QLatin1String CommandProvision = latin1("Provision");
inline constexpr QLatin1String CommandSmartForward = latin1("SmartForward");
inline constexpr QLatin1String CommandSmartReply = latin1("SmartReply");
inline constexpr QLatin1String CommandMeetingResponse = latin1("MeetingResponse");
inline constexpr QLatin1String CommandSendMail = latin1("SendMail");
inline constexpr QLatin1String CommandMoveItems = latin1("MoveItems");
inline constexpr QLatin1String CommandGetAttachment = latin1("GetAttachment");
inline constexpr QLatin1String CommandFolderUpdate = latin1("FolderUpdate");
inline constexpr QLatin1String CommandFolderSync = latin1("FolderSync");
inline constexpr QLatin1String CommandFolderDelete = latin1("FolderDelete");
inline constexpr QLatin1String CommandFolderCreate = latin1("FolderCreate");
inline constexpr QLatin1String CommandSync = latin1("Sync");
inline constexpr QLatin1String CommandItemOperations = latin1("ItemOperations");

inline constexpr QLatin1String QueryLongId = latin1("LongId");
inline constexpr QLatin1String QueryItemId = latin1("ItemId");
inline constexpr QLatin1String QueryCollectionId = latin1("CollectionId");
inline constexpr QLatin1String QuerySaveInSent = latin1("SaveInSent");
inline constexpr QLatin1String QueryAttachmentName = latin1("AttachmentName");
inline constexpr QLatin1String TrueValue = latin1("T");

// Header names and values go out as bytes.
inline constexpr char KeepAlive[] = "Keep-Alive";
inline constexpr char AuthorizationBasicPrefix[] = "Basic ";
inline constexpr char CommandOptionsVerb[] = "OPTIONS";
inline constexpr char HeaderAuthorization[] = "Authorization";
inline constexpr char HeaderXMSLocation[] = "X-MS-Location";
inline constexpr char HeaderAsPolicyKey[] = "X-MS-PolicyKey";
inline constexpr char HeaderAsAcceptMultiPart[] = "MS-ASAcceptMultiPart";
inline constexpr char HeaderAsProtocolCommands[] = "MS-ASProtocolCommands";
inline constexpr char HeaderAsProtocolVersions[] = "MS-ASProtocolVersions";
inline constexpr char HeaderAsProtocolVersion[] = "MS-ASProtocolVersion";
inline constexpr char HeaderHostName[] = "Host";
inline constexpr char HeaderConnection[] = "Connection";

/** Milliseconds; the delay of the first retry. */
inline constexpr int CommandsRetryTimeout = 5000;
inline constexpr int CommandMaxRetriesCount = 5;
/** Seconds; servers refuse to let a Ping wait for longer. */
inline constexpr int LongestHeartbeat = 3540;
/** Milliseconds. */
inline constexpr int CommandsOptionsTimeout = 20000;

/** What a QNetworkReply::NetworkError is added to, to be a status. */
inline constexpr int TransportStatusBase = 10000;
inline constexpr int TransportStatusTimeout = 10004;
inline constexpr int TransportStatusCancelled = 10005;
/** HTTP 503. */
inline constexpr int TransportStatusUnavailable = 10403;

/** Makes an object, in practice a reply, remember its account. */
void setAccountId(QObject *object, EasAccountId accountId);
/** The account of an object; 0 without one. */
EasAccountId accountId(const QObject *object);

} // namespace ProtocolUtils
