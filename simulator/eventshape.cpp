// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/eventshape.h"

#include "simulator/eventfields.h"
#include "simulator/protocolversion.h"

namespace Simulator {
namespace {

void appendText(QVector<WbxmlNode> &nodes, const char *element, const QString &text)
{
    if (!text.isEmpty())
        nodes.append(WbxmlNode(QLatin1String(element), text));
}

WbxmlNode ruleNode(const Event &event, const EventContext &context)
{
    EventRule rule = *event.rule;
    if (rule.until.isValid() && event.allDay && context.version < Version160)
        rule.until = context.zone.toInstant(rule.until);
    return rule.toNode(context.version);
}

/** A field of its own that is empty has an empty element. */
QVector<WbxmlNode> ownNodes(const EventField &field, const EventDetails &details, const EventContext &context)
{
    const QString element = field.elementAt(context.version);
    for (const WbxmlNode &node : field.write(element, details, context)) {
        if (node.name() == element)
            return { node };
    }
    // Without attachments the list itself is left out.
    const bool canBeEmpty = element != QLatin1String("AirSyncBase:Attachments");
    return canBeEmpty ? QVector<WbxmlNode> { WbxmlNode(element) } : QVector<WbxmlNode>();
}

WbxmlNode exceptionNode(const Event &event, const EventException &exception, const EventContext &context)
{
    WbxmlNode node(QStringLiteral("Calendar:Exception"));
    node.append(QStringLiteral("Deleted"), int(exception.isDeleted));
    node.append(context.version < Version160 ? QStringLiteral("ExceptionStartTime")
                                             : QStringLiteral("AirSyncBase:InstanceId"),
        EventFields::wireTime(exception.original, event.allDay, context));
    const EventDetails details = event.detailsOf(exception);
    for (const EventField &field : EventFields::all()) {
        if (context.version < field.firstVersion || !exception.own.contains(field.nameText()))
            continue;
        for (const WbxmlNode &own : ownNodes(field, details, context))
            node.append(own);
    }
    return node;
}

WbxmlNode exceptionsNode(const Event &event, const EventContext &context)
{
    WbxmlNode list(QStringLiteral("Calendar:Exceptions"));
    for (const EventException &exception : event.exceptions)
        list.append(exceptionNode(event, exception, context));
    return list;
}

} // namespace

QVector<WbxmlNode> EventShape::elements(const Event &event, const ItemShape &shape)
{
    const EventContext context { shape.version, event.zone, shape, nullptr };
    QVector<WbxmlNode> nodes;
    if (!event.allDay || shape.version < Version160)
        appendText(nodes, "Calendar:Timezone", QString::fromLatin1(event.zone.toBase64()));
    for (const EventField &field : EventFields::all()) {
        if (shape.version >= field.firstVersion)
            nodes += field.write(field.elementAt(shape.version), event, context);
    }
    appendText(nodes, "Calendar:UID", event.uid);
    appendText(nodes, "Calendar:OrganizerName", event.organizerName);
    appendText(nodes, "Calendar:OrganizerEmail", event.organizerEmail);
    if (event.rule)
        nodes.append(ruleNode(event, context));
    if (!event.exceptions.isEmpty())
        nodes.append(exceptionsNode(event, context));
    if (shape.version >= Version140) {
        appendText(nodes, "Calendar:ResponseRequested", QString::number(int(event.responseRequested)));
        appendText(
            nodes, "Calendar:DisallowNewTimeProposal", QString::number(int(event.disallowNewTimeProposal)));
    }
    return nodes;
}

} // namespace Simulator
