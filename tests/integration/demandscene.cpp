// SPDX-License-Identifier: LGPL-2.1-or-later
#include "integration/demandscene.h"

#include "application/mapping/easdatabase.h"
#include "application/requestmanager.h"
#include "integration/fetchscene.h"
#include "simulator/meetings.h"
#include "support/devicecalendar.h"
#include "support/outgoingmail.h"
#include "support/sampleevents.h"
#include "support/serversearches.h"

#include <attachmentinfo.h>

using Simulator::Override;
using namespace StatusScene;

namespace {

const QString root = QStringLiteral("0");
constexpr int FileSize = 1000;

bool mailIsEqual(SyncTestBed &bed)
{
    return bed.deviceState() == bed.serverState() && bed.deviceFolders() == bed.serverFolders();
}

bool nothingYet(SyncTestBed &bed)
{
    bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("one")));
    return true;
}

bool losesItsKeys(SyncTestBed &bed)
{
    if (!missesOneMessage(bed))
        return false;
    bed.server().overrideNext(QStringLiteral("Sync"), Override::topStatus(3));
    return true;
}

bool movesAMessage(SyncTestBed &bed)
{
    bed.mailbox().addFolder(QStringLiteral("Archive"));
    bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("one")));
    if (bed.sync() != 0)
        return false;
    moveOnDevice(bed, "one", QStringLiteral("Archive"));
    return true;
}

qulonglong sync(SyncTestBed &bed)
{
    return bed.startSync();
}

qulonglong syncFolders(SyncTestBed &bed)
{
    return bed.startFoldersSync();
}

// Folders

bool hasAFolder(SyncTestBed &bed)
{
    bed.mailbox().addFolder(QStringLiteral("Plans"));
    return bed.sync() == 0;
}

QString localFolder(SyncTestBed &bed)
{
    const auto items = *EasDatabase::instance()->folderItemsByFolderType(
        bed.accountId(), EasFolderItem::UserCreatedMailFolder);
    return items.value(0).localId();
}

/** Identifiers beside those of the bed's own calls. */
qulonglong nextId()
{
    static qulonglong last = 100000;
    return ++last;
}

qulonglong createFolder(SyncTestBed &bed)
{
    const qulonglong id = nextId();
    RequestManager::instance()->onCreateFolderRequest(bed.accountId(), QStringLiteral("New"), root, 0, id);
    return id;
}

qulonglong renameFolder(SyncTestBed &bed)
{
    const qulonglong id = nextId();
    RequestManager::instance()->onUpdateFolderRequest(
        bed.accountId(), localFolder(bed), root, QStringLiteral("Done"), id);
    return id;
}

qulonglong deleteFolder(SyncTestBed &bed)
{
    const qulonglong id = nextId();
    RequestManager::instance()->onDeleteFolderRequest(bed.accountId(), localFolder(bed), id);
    return id;
}

// Sending

QMailMessageId outgoing(SyncTestBed &bed, QMailMessage::ResponseType type)
{
    QMailMessage message = OutgoingMail::plain(QStringLiteral("outgoing"), QStringLiteral("bob@example.com"));
    if (type != QMailMessage::NoResponse)
        OutgoingMail::answer(&message, bed.deviceMessage(QStringLiteral("old")), type);
    return OutgoingMail::putIntoOutbox(message, QMailAccountId(bed.accountId()));
}

template <QMailMessage::ResponseType Type> bool hasAMessageToSend(SyncTestBed &bed)
{
    return missesOneMessage(bed) && outgoing(bed, Type).isValid();
}

qulonglong sendMessage(SyncTestBed &bed)
{
    return bed.startSendMail(bed.deviceMessage(QStringLiteral("outgoing")).toULongLong());
}

/** It has gone once. */
bool hasSentTheMessage(SyncTestBed &bed)
{
    return bed.server().outbound().size() == 1
        && !(QMailMessageMetaData(bed.deviceMessage(QStringLiteral("outgoing"))).status()
            & QMailMessage::Outbox);
}

template <int Size> bool hasAMessageWithAFile(SyncTestBed &bed)
{
    return FetchScene::receives(bed, { FetchScene::bytesOf(Size) }) != 0;
}

qulonglong messageWithAFile(SyncTestBed &bed)
{
    return bed.deviceMessage(QStringLiteral("files")).toULongLong();
}

qulonglong fetchFile(SyncTestBed &bed)
{
    return bed.startDownloadPart(messageWithAFile(bed), FetchScene::fileLocation(0));
}

qulonglong fetchMessage(SyncTestBed &bed)
{
    return bed.startDownloadMessages({ messageWithAFile(bed) }, true);
}

template <int Size> bool hasTheFile(SyncTestBed &bed)
{
    return FetchScene::fileOnDevice(messageWithAFile(bed), 0) == FetchScene::bytesOf(Size);
}

// Files of events

QString eventFile()
{
    const auto event = DeviceCalendar().withSummary(SampleEvents::meeting().subject);
    return event && !event->attachments().isEmpty() ? event->attachments().constFirst().uri() : QString();
}

bool hasAnEventWithAFile(SyncTestBed &bed)
{
    Simulator::Event event = SampleEvents::meeting();
    event.attachments.clear();
    event.attach(QStringLiteral("plan.bin"), FetchScene::bytesOf(FileSize));
    bed.place(event);
    return bed.sync() == 0 && !eventFile().isEmpty();
}

qulonglong fetchEventFile(SyncTestBed &bed)
{
    const qulonglong id = nextId();
    RequestManager::instance()->onCalendarAttachmentDownloadRequest(bed.accountId(), id, eventFile());
    return id;
}

bool hasTheEventFile(SyncTestBed &)
{
    return !mKCal::AttachmentInfo(eventFile()).contentLocation().isEmpty();
}

// Out of office

qulonglong goAway(SyncTestBed &bed)
{
    const qulonglong id = nextId();
    EasOofContainer state;
    state.setOofEnabled(true);
    RequestManager::instance()->onSetOofStateRequest(bed.accountId(), id, state);
    return id;
}

bool isAway(SyncTestBed &bed)
{
    return bed.mailbox().outOfOffice().state == 1;
}

// Searches

bool isFound(SyncTestBed &bed)
{
    const auto results = QMailMessageKey::status(QMailMessage::Temporary, QMailDataComparator::Includes)
        & QMailMessageKey::parentAccountId(QMailAccountId(bed.accountId()));
    return QMailStore::instance()->countMessages(results) == 1;
}

qulonglong searchMail(SyncTestBed &bed)
{
    return ServerSearches::startMail(bed.accountId(), { QStringLiteral("new") });
}

qulonglong searchPeople(SyncTestBed &bed)
{
    return ServerSearches::startPeople(bed.accountId(), QStringLiteral("user"));
}

qulonglong findMail(SyncTestBed &bed)
{
    return ServerSearches::startFind(bed.accountId(), QStringLiteral("new"), {}, 0);
}

// Meetings

const QByteArray invitation =
    "From: olga@example.com\r\nTo: user@example.com\r\nSubject: Plans\r\nMIME-Version: 1.0\r\n"
    "Content-Type: text/calendar; method=REQUEST\r\n\r\nBEGIN:VCALENDAR\r\nVERSION:2.0\r\nMETHOD:REQUEST\r\n"
    "BEGIN:VEVENT\r\nUID:plans\r\nDTSTAMP:20300101T080000Z\r\nDTSTART:20300110T080000Z\r\n"
    "DTEND:20300110T090000Z\r\nSUMMARY:Plans\r\nORGANIZER:mailto:olga@example.com\r\n"
    "ATTENDEE:mailto:user@example.com\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";

bool hasAnInvitation(SyncTestBed &bed)
{
    Simulator::Meetings::arrive(bed.mailbox(), bed.mailbox().deliver(bed.mailbox().inboxId(), invitation));
    return bed.sync() == 0;
}

quint64 replyMessage(SyncTestBed &bed)
{
    const QMailMessage reply = QMailMessage::fromRfc2822(
        "From: user@example.com\r\nTo: olga@example.com\r\nSubject: Accepted: Plans\r\n\r\nYes.\r\n");
    return OutgoingMail::putIntoOutbox(reply, QMailAccountId(bed.accountId())).toULongLong();
}

qulonglong acceptInvitation(SyncTestBed &bed)
{
    const qulonglong id = nextId();
    RequestManager::instance()->onMeetingResponseRequest(bed.accountId(), id,
        bed.deviceMessage(QStringLiteral("Plans")).toULongLong(), 0, 1, replyMessage(bed), {}, {}, {});
    return id;
}

qulonglong acceptEvent(SyncTestBed &bed)
{
    const qulonglong id = nextId();
    const auto event = DeviceCalendar().withSummary(QStringLiteral("Plans"));
    RequestManager::instance()->onMeetingResponseCalendarRequest(
        bed.accountId(), id, event ? event->uid() : QString(), 0, 1, replyMessage(bed), {}, {}, {});
    return id;
}

bool hasAccepted(SyncTestBed &bed)
{
    const QVector<Simulator::Event> events = bed.serverEvents();
    return events.size() == 1 && events.first().responseType == 3 && bed.server().outbound().size() == 1;
}

} // namespace

const QList<DemandScene::Work> &DemandScene::works()
{
    constexpr int TwoRanges = FetchScene::RangeSize + FileSize;
    static const QList<Work> all {
        { "first folders", "FolderSync", 0, nothingYet, sync, mailIsEqual },
        { "first keys", "Sync", 0, nothingYet, sync, mailIsEqual },
        { "first items", "Sync", 1, nothingYet, sync, mailIsEqual },
        { "later folders", "FolderSync", 0, missesOneMessage, sync, mailIsEqual },
        { "later items", "Sync", 0, missesOneMessage, sync, mailIsEqual },
        { "keys anew", "Sync", 0, losesItsKeys, sync, mailIsEqual },
        { "a move", "MoveItems", 0, movesAMessage, sync,
            [](SyncTestBed &bed) { return bed.sync() == 0 && mailIsEqual(bed); }, "14.1", false },
        { "folders alone", "FolderSync", 0, missesOneMessage, syncFolders,
            [](SyncTestBed &bed) {
                return bed.deviceFolders() == bed.serverFolders();
            } },
        { "a new folder", "FolderCreate", 0, missesOneMessage, createFolder,
            [](SyncTestBed &bed) {
                return bed.sync() == 0 && mailIsEqual(bed);
            } },
        { "a renamed folder", "FolderUpdate", 0, hasAFolder, renameFolder, mailIsEqual },
        { "a deleted folder", "FolderDelete", 0, hasAFolder, deleteFolder, mailIsEqual },
        { "a file", "ItemOperations", 0, hasAMessageWithAFile<FileSize>, fetchFile, hasTheFile<FileSize> },
        { "the rest of a file", "ItemOperations", 1, hasAMessageWithAFile<TwoRanges>, fetchFile,
            hasTheFile<TwoRanges> },
        { "a message", "ItemOperations", 0, hasAMessageWithAFile<FileSize>, fetchMessage,
            hasTheFile<FileSize> },
        { "the file of a message", "ItemOperations", 1, hasAMessageWithAFile<FileSize>, fetchMessage,
            hasTheFile<FileSize> },
        { "an answer to an invitation", "MeetingResponse", 0, hasAnInvitation, acceptInvitation,
            hasAccepted },
        { "the mail with an answer", "SendMail", 0, hasAnInvitation, acceptEvent, hasAccepted },
        { "a message that is sent", "SendMail", 0, hasAMessageToSend<QMailMessage::NoResponse>, sendMessage,
            hasSentTheMessage },
        { "a reply", "SmartReply", 0, hasAMessageToSend<QMailMessage::Reply>, sendMessage,
            hasSentTheMessage },
        { "a forward", "SmartForward", 0, hasAMessageToSend<QMailMessage::Forward>, sendMessage,
            hasSentTheMessage },
        { "the file of an event", "ItemOperations", 0, hasAnEventWithAFile, fetchEventFile, hasTheEventFile,
            "16.1" },
        { "an absence", "Settings", 0, missesOneMessage, goAway, isAway },
        { "a search", "Search", 0, missesOneMessage, searchMail, isFound },
        { "a search for people", "Search", 0, missesOneMessage, searchPeople,
            [](SyncTestBed &) {
                return true;
            } },
        { "a find", "Find", 0, missesOneMessage, findMail, isFound, "16.1" },
    };
    return all;
}

std::unique_ptr<SyncTestBed> DemandScene::bedFor(const Work &work)
{
    return std::make_unique<SyncTestBed>(
        QStringList { QLatin1String(work.version) }, SyncTestBed::everyService());
}

void DemandScene::answer(SyncTestBed &bed, const Work &work, const Override &override, int times)
{
    if (work.passing > 0)
        bed.server().overrideNext(QLatin1String(work.command), Override(), work.passing);
    bed.server().overrideNext(QLatin1String(work.command), override, times);
}

void DemandScene::offerPolicy(SyncTestBed &bed)
{
    bed.server().changePolicies([](Simulator::ServerPolicies &all) {
        all.setPolicies({ Simulator::Policy::allowing() });
        all.checksKeys = false;
    });
}
