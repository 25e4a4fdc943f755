// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/eventupload.h"

#include "simulator/protocolversion.h"

#include <algorithm>

namespace Simulator {
namespace {

const int longestUid = 300;

/** An element of the series itself, and the versions in which a device may send it. */
struct SeriesElement
{
    const char *name;
    int firstVersion = Version120;
    int lastVersion = Version161;
};

const SeriesElement seriesElements[] = {
    { "Calendar:Timezone" },
    { "Calendar:UID", Version120, Version141 },
    { "Calendar:OrganizerName", Version120, Version141 },
    { "Calendar:OrganizerEmail", Version120, Version141 },
    { "Calendar:Recurrence" },
    { "Calendar:Exceptions", Version120, Version141 },
    { "Calendar:ResponseRequested", Version140 },
    { "Calendar:DisallowNewTimeProposal", Version140 },
    { "Calendar:ClientUid", Version160 },
};

bool mayBeSent(const EventField &field, int version)
{
    return field.owner == EventField::Anyone
        || (field.owner == EventField::DeviceUntil141 && version < Version160);
}

bool isSeriesElement(const QString &name, int version)
{
    return std::any_of(
        std::begin(seriesElements), std::end(seriesElements), [&](const SeriesElement &element) {
            return name == QLatin1String(element.name) && version >= element.firstVersion
                && version <= element.lastVersion;
        });
}

bool flag(const WbxmlNode &data, const char *element)
{
    return data.text(QLatin1String(element)) == QLatin1String("1");
}

} // namespace

EventUpload::EventUpload(const UploadShape &upload)
    : mUpload(upload)
{
}

EventContext EventUpload::context()
{
    return { mUpload.version, mEvent.zone, ItemShape(), &mEvent.lastAttachment };
}

std::optional<Event> EventUpload::added(const WbxmlNode &data)
{
    const bool hasTimes =
        data.has(QStringLiteral("Calendar:StartTime")) && data.has(QStringLiteral("Calendar:EndTime"));
    mEvent = Event();
    mEvent.uid = data.text(QStringLiteral("Calendar:UID"));
    return hasTimes && allows(data) && apply(data) ? finished() : std::nullopt;
}

std::optional<Event> EventUpload::changed(const Event &before, const WbxmlNode &data)
{
    mEvent = before;
    return allows(data) && apply(data) ? finished() : std::nullopt;
}

std::optional<Event> EventUpload::finished()
{
    const bool isGood = mEvent.end >= mEvent.start && mEvent.uid.size() <= longestUid;
    return isGood ? std::make_optional(mEvent) : std::nullopt;
}

bool EventUpload::allows(const WbxmlNode &data) const
{
    return std::all_of(data.children().begin(), data.children().end(), [this](const WbxmlNode &node) {
        const EventField *field = EventFields::ofElement(node.name(), mUpload.version);
        return field ? mayBeSent(*field, mUpload.version) : isSeriesElement(node.name(), mUpload.version);
    });
}

bool EventUpload::apply(const WbxmlNode &data)
{
    applyMarks(data);
    return applyZone(data) && applyDetails(data) && applyRule(data) && applyExceptions(data);
}

/** Whether what the upload does not say stays: from 16.0 on all, before that what the device did not name. */
bool EventUpload::leavesToTheServer(const QString &element) const
{
    return mUpload.version >= Version160 || !mUpload.isManaged(element);
}

void EventUpload::applyMarks(const WbxmlNode &data)
{
    // What the organizer set stays when somebody who was invited does not say it.
    const bool isInvitation = (mEvent.meetingStatus & 2) != 0;
    const auto apply = [&](const char *element, bool &mark) {
        const bool isLeft = isInvitation || leavesToTheServer(QLatin1String(element));
        if (data.has(QLatin1String(element)) || !isLeft)
            mark = flag(data, element);
    };
    if (mUpload.version >= Version140) {
        apply("Calendar:ResponseRequested", mEvent.responseRequested);
        apply("Calendar:DisallowNewTimeProposal", mEvent.disallowNewTimeProposal);
    }
    if (data.has(QStringLiteral("Calendar:OrganizerName")))
        mEvent.organizerName = data.text(QStringLiteral("Calendar:OrganizerName"));
    if (data.has(QStringLiteral("Calendar:OrganizerEmail")))
        mEvent.organizerEmail = data.text(QStringLiteral("Calendar:OrganizerEmail"));
}

bool EventUpload::applyZone(const WbxmlNode &data)
{
    const WbxmlNode node = data.at(QStringLiteral("Calendar:Timezone"));
    if (node.isNull())
        return true;
    // Days have no zone there.
    if (mUpload.version >= Version160 && flag(data, "Calendar:AllDayEvent"))
        return false;
    const auto zone = EventZone::fromBase64(node.bytes());
    mEvent.zone = zone.value_or(mEvent.zone);
    return zone.has_value();
}

bool EventUpload::applyDetails(const WbxmlNode &data)
{
    for (const EventField &field : EventFields::all()) {
        const QString element = field.elementAt(mUpload.version);
        const WbxmlNode node = data.at(element);
        if (!node.isNull()) {
            if (!field.read(node, mEvent, context()))
                return false;
        } else if (field.absence == EventField::Removed && !leavesToTheServer(element)) {
            field.copy(EventDetails(), mEvent);
        }
    }
    if (!data.has(QStringLiteral("Calendar:DtStamp")))
        mEvent.stamp = QDateTime::currentDateTimeUtc();
    if (!mEvent.attendees.isEmpty() && !data.has(QStringLiteral("Calendar:MeetingStatus")))
        mEvent.meetingStatus = std::max(mEvent.meetingStatus, 1);
    return true;
}

bool EventUpload::applyRule(const WbxmlNode &data)
{
    const WbxmlNode node = data.at(QStringLiteral("Calendar:Recurrence"));
    if (node.isNull() && leavesToTheServer(QStringLiteral("Calendar:Recurrence")))
        return true;
    if (node.children().isEmpty()) {
        mEvent.rule.reset();
        mEvent.exceptions.clear();
        return true;
    }
    mEvent.rule = EventRule::fromNode(node, mUpload.version, mEvent.rule.value_or(EventRule()));
    if (mEvent.rule && mEvent.rule->until.isValid() && mEvent.allDay) {
        // Of the end of a series of days the day counts.
        const QDateTime until = mEvent.rule->until;
        const QDateTime wall = mUpload.version < Version160 ? mEvent.zone.toWall(until) : until;
        mEvent.rule->until = QDateTime(wall.date(), QTime(0, 0), Qt::UTC);
    }
    return mEvent.rule.has_value();
}

bool EventUpload::applyExceptions(const WbxmlNode &data)
{
    if (!data.has(QStringLiteral("Calendar:Exceptions")))
        return true;
    const Event before = mEvent;
    mEvent.exceptions.clear();
    const QVector<WbxmlNode> nodes = data.all(QStringLiteral("Calendar:Exceptions/Exception"));
    return std::all_of(
        nodes.begin(), nodes.end(), [&](const WbxmlNode &node) { return applyException(node, before); });
}

bool EventUpload::applyException(const WbxmlNode &node, const Event &before)
{
    const QDateTime original =
        EventFields::modelTime(node.text(QStringLiteral("ExceptionStartTime")), mEvent.allDay, context());
    if (!mEvent.hasOccurrence(original) || mEvent.exceptionAt(original))
        return false;
    EventException &exception = mEvent.exceptionFor(original);
    // What only the server knows of the occurrence, such as its files, stays.
    const EventException *known = before.exceptionAt(original);
    if (known && !known->isDeleted) {
        exception.details = known->details;
        for (const EventField &field : EventFields::all()) {
            const bool isOurs = !mayBeSent(field, mUpload.version) || mUpload.version < field.firstVersion;
            if (isOurs && known->own.contains(field.nameText()))
                exception.own.insert(field.nameText());
        }
    }
    exception.isDeleted = flag(node, "Calendar:Deleted");
    WbxmlNode fields = node;
    fields.removeAll(QStringLiteral("ExceptionStartTime"));
    fields.removeAll(QStringLiteral("Deleted"));
    return exception.isDeleted || applyOccurrence(fields, exception);
}

/** Own is what is otherwise than in the series. */
bool EventUpload::applyOccurrence(const WbxmlNode &data, EventException &exception)
{
    const EventDetails ordinary = mEvent.occurrenceAt(exception.original);
    EventDetails details = mEvent.detailsOf(exception);
    int taken = 0;
    for (const EventField &field : EventFields::all()) {
        const WbxmlNode node = data.at(field.elementAt(mUpload.version));
        if (node.isNull() || mUpload.version < field.firstVersion)
            continue;
        ++taken;
        if (!mayBeSent(field, mUpload.version) || !field.read(node, details, context()))
            return false;
        if (!field.isSame(ordinary, details) || exception.own.contains(field.nameText()))
            exception.own.insert(field.nameText());
    }
    exception.details = details;
    return taken == data.children().size() && details.end >= details.start;
}

std::optional<Event> EventUpload::changedInstance(
    const Event &before, const QString &instanceId, const WbxmlNode &data)
{
    mEvent = before;
    const QDateTime original = EventFields::modelTime(instanceId, before.allDay, context());
    const EventException *known = before.exceptionAt(original);
    if (mUpload.version < Version160 || !before.hasOccurrence(original) || (known && known->isDeleted))
        return std::nullopt;
    WbxmlNode fields = data;
    // An occurrence has the zone of its series.
    if (!before.allDay)
        fields.removeAll(QStringLiteral("Calendar:Timezone"));
    fields.removeAll(QStringLiteral("Calendar:ResponseRequested"));
    fields.removeAll(QStringLiteral("Calendar:DisallowNewTimeProposal"));
    EventException &exception = mEvent.exceptionFor(original);
    const bool isGood = applyOccurrence(fields, exception) && exception.details.allDay == before.allDay;
    return isGood ? finished() : std::nullopt;
}

std::optional<Event> EventUpload::deletedInstance(const Event &before, const QString &instanceId)
{
    mEvent = before;
    const QDateTime original = EventFields::modelTime(instanceId, before.allDay, context());
    if (mUpload.version < Version160 || !before.hasOccurrence(original))
        return std::nullopt;
    EventException &exception = mEvent.exceptionFor(original);
    exception.isDeleted = true;
    exception.own.clear();
    return mEvent;
}

} // namespace Simulator
