// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QLatin1String>

class QObject;

/** The literals of the wire protocol and the limits that all requests share. */
namespace ProtocolUtils {

inline constexpr QLatin1String PolicyType("MS-EAS-Provisioning-WBXML");
inline constexpr QLatin1String DefaultPolicyKey("0");
inline constexpr QLatin1String InitialSyncKey("0");

inline constexpr QLatin1String ClassEmail("Email");
inline constexpr QLatin1String ClassContacts("Contacts");
inline constexpr QLatin1String ClassCalendar("Calendar");
inline constexpr QLatin1String StorageMailbox("Mailbox");

inline constexpr QLatin1String ContentTypeMultiPart("application/vnd.ms-sync.multipart");
inline constexpr QLatin1String ContentTypeMessage("message/rfc822");
inline constexpr QLatin1String ContentTypeWbxml("application/vnd.ms-sync.wbxml");

inline constexpr QLatin1String CommandAttendeesAvailable("ResolveRecipients");
inline constexpr QLatin1String CommandSettings("Settings");
inline constexpr QLatin1String CommandFind("Find");
inline constexpr QLatin1String CommandSearch("Search");
inline constexpr QLatin1String CommandPing("Ping");
inline constexpr QLatin1String CommandProvision("Provision");
inline constexpr QLatin1String CommandSmartForward("SmartForward");
inline constexpr QLatin1String CommandSmartReply("SmartReply");
inline constexpr QLatin1String CommandMeetingResponse("MeetingResponse");
inline constexpr QLatin1String CommandSendMail("SendMail");
inline constexpr QLatin1String CommandMoveItems("MoveItems");
inline constexpr QLatin1String CommandGetAttachment("GetAttachment");
inline constexpr QLatin1String CommandFolderUpdate("FolderUpdate");
inline constexpr QLatin1String CommandFolderSync("FolderSync");
inline constexpr QLatin1String CommandFolderDelete("FolderDelete");
inline constexpr QLatin1String CommandFolderCreate("FolderCreate");
inline constexpr QLatin1String CommandSync("Sync");
inline constexpr QLatin1String CommandItemOperations("ItemOperations");

inline constexpr QLatin1String QueryLongId("LongId");
inline constexpr QLatin1String QueryItemId("ItemId");
inline constexpr QLatin1String QueryCollectionId("CollectionId");
inline constexpr QLatin1String QuerySaveInSent("SaveInSent");
inline constexpr QLatin1String QueryAttachmentName("AttachmentName");
inline constexpr QLatin1String TrueValue("T");

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
/** Milliseconds. */
inline constexpr int CommandsOptionsTimeout = 20000;

/** What a QNetworkReply::NetworkError is added to, to be a status. */
inline constexpr int TransportStatusBase = 10000;
inline constexpr int TransportStatusTimeout = 10004;
inline constexpr int TransportStatusCancelled = 10005;

/** Makes an object, in practice a reply, remember its account. */
void setAccountId(QObject *object, EasAccountId accountId);
/** The account of an object; 0 without one. */
EasAccountId accountId(const QObject *object);

} // namespace ProtocolUtils
