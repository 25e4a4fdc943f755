// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/itemtext.h"

#include "simulator/contactitem.h"
#include "simulator/email.h"
#include "simulator/eventfields.h"
#include "simulator/eventitem.h"
#include "simulator/protocolversion.h"

#include <algorithm>

namespace Simulator {
namespace {

QString oneLine(const WbxmlNode &node)
{
    if (node.children().isEmpty())
        return node.text().simplified();
    QStringList parts;
    for (const WbxmlNode &child : node.children())
        parts.append(oneLine(child));
    return parts.join(QLatin1Char(' '));
}

QString line(const QString &field, const QString &value, const QString &prefix = QString())
{
    return prefix + field + QLatin1Char('\t') + value;
}

QStringList splitList(const QString &value)
{
    QStringList entries = value.split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (QString &entry : entries)
        entry = entry.trimmed();
    return entries;
}

EventContext newestContext(const Event &event)
{
    ItemShape shape;
    shape.version = Version161;
    return { Version161, event.zone, shape, nullptr };
}

QStringList detailLines(
    const Event &event, const EventDetails &details, const QSet<QString> *own, const QString &prefix)
{
    QStringList lines;
    const EventContext context = newestContext(event);
    for (const EventField &field : EventFields::all()) {
        if (own && !own->contains(field.nameText()))
            continue;
        const QVector<WbxmlNode> nodes = field.write(field.elementAt(Version161), details, context);
        if (!nodes.isEmpty() || own)
            lines.append(line(field.nameText(), oneLine(nodes.value(0)), prefix));
    }
    return lines;
}

QStringList eventLines(const Event &event)
{
    QStringList lines { line(QStringLiteral("Timezone"), event.zone.standardName()) };
    lines += detailLines(event, event, nullptr, QString());
    if (event.rule)
        lines.append(line(QStringLiteral("Recurrence"), oneLine(event.rule->toNode(Version161))));
    for (const EventException &exception : event.exceptions) {
        const QString prefix = exception.original.toString(Qt::ISODate) + QLatin1Char(' ');
        if (exception.isDeleted)
            lines.append(line(QStringLiteral("Deleted"), QStringLiteral("1"), prefix));
        else
            lines += detailLines(event, event.detailsOf(exception), &exception.own, prefix);
    }
    return lines;
}

QStringList contactLines(const Contact &contact)
{
    QStringList lines;
    for (auto text = contact.texts().constBegin(); text != contact.texts().constEnd(); ++text)
        lines.append(line(text.key(), text.value()));
    if (!contact.categories().isEmpty())
        lines.append(line(QStringLiteral("Categories"), contact.categories().join(QLatin1Char(','))));
    if (!contact.note().isEmpty())
        lines.append(line(QStringLiteral("Note"), contact.note().simplified()));
    if (!contact.picture().isEmpty())
        lines.append(
            line(QStringLiteral("Picture"), QStringLiteral("%1 bytes").arg(contact.picture().size())));
    return lines;
}

bool setDetail(EventDetails &details, const Event &event, const QString &name, const QString &value)
{
    if (name == QLatin1String("Categories")) {
        details.categories = splitList(value);
        return true;
    }
    if (name == QLatin1String("Location")) {
        details.location = { value, {} };
        return true;
    }
    const EventField *field = EventFields::named(name);
    EventContext context = newestContext(event);
    // Lists cannot be said in one text.
    static const QStringList lists { QStringLiteral("Attendees"), QStringLiteral("Attachments") };
    return field && !lists.contains(name)
        && field->read(WbxmlNode(field->elementAt(Version161), value), details, context);
}

bool setContactField(Contact &contact, const QString &field, const QString &value)
{
    if (field == QLatin1String("Categories"))
        contact.setCategories(splitList(value));
    else if (field == QLatin1String("Note"))
        contact.setNote(value);
    else if (Contact::textFields().contains(field))
        contact.setText(field, value);
    else
        return false;
    return true;
}

/** Edits only if the change can be made. */
template <class ItemType>
bool editIf(
    Mailbox &mailbox, const QString &serverId, const std::function<bool(typename ItemType::Value &)> &change)
{
    auto value = mailbox.value<ItemType>(serverId);
    return value && change(*value) && mailbox.replaceItem(serverId, ItemType::make(*value));
}

} // namespace

QString ItemText::title(const ItemPtr &item)
{
    if (const auto email = std::dynamic_pointer_cast<const Email>(item))
        return email->content().headers().subject;
    if (const auto event = std::dynamic_pointer_cast<const EventItem>(item))
        return event->value().subject;
    if (const auto contact = std::dynamic_pointer_cast<const ContactItem>(item)) {
        const QString name = contact->value().text(QStringLiteral("FileAs"));
        const QString first = contact->value().text(QStringLiteral("FirstName"));
        return name.isEmpty()
            ? (first + QLatin1Char(' ') + contact->value().text(QStringLiteral("LastName"))).trimmed()
            : name;
    }
    return item->className();
}

QStringList ItemText::lines(const ItemPtr &item)
{
    if (const auto event = std::dynamic_pointer_cast<const EventItem>(item))
        return eventLines(event->value());
    if (const auto contact = std::dynamic_pointer_cast<const ContactItem>(item))
        return contactLines(contact->value());
    return { line(QStringLiteral("Subject"), title(item)) };
}

bool ItemText::setField(Mailbox &mailbox, const QString &serverId, const QString &field, const QString &value)
{
    return editIf<ContactItem>(
               mailbox, serverId, [&](Contact &contact) { return setContactField(contact, field, value); })
        || editIf<EventItem>(
            mailbox, serverId, [&](Event &event) { return setDetail(event, event, field, value); });
}

bool ItemText::setOccurrenceField(
    Mailbox &mailbox, const QString &serverId, const QDate &day, const QString &field, const QString &value)
{
    return editIf<EventItem>(mailbox, serverId, [&](Event &event) {
        const Event series = event;
        bool done = false;
        if (event.hasOccurrence(event.originalOn(day)))
            event.editOccurrence(
                day, [&](EventDetails &details) { done = setDetail(details, series, field, value); });
        return done;
    });
}

bool ItemText::deleteOccurrence(Mailbox &mailbox, const QString &serverId, const QDate &day)
{
    return editIf<EventItem>(mailbox, serverId, [&day](Event &event) {
        const bool exists = event.hasOccurrence(event.originalOn(day));
        if (exists)
            event.deleteOccurrence(day);
        return exists;
    });
}

} // namespace Simulator
