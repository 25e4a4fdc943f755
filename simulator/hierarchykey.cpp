// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/hierarchykey.h"

namespace Simulator {

HierarchyKey::Check HierarchyKey::takeUp(const CommandContext &context)
{
    HierarchyState &state = context.device.hierarchy;
    const QString key = context.request.document.text(QStringLiteral("SyncKey"));
    if (key.isEmpty())
        return Check::Unknown;
    if (key == state.key)
        return Check::Current;
    if (key != state.previousKey)
        return Check::Unknown;
    if (context.request.document == state.lastRequest)
        return Check::Repeated;
    state.known = state.previousKnown;
    return Check::Current;
}

QString HierarchyKey::handOn(const CommandContext &context, const QVector<MailFolder> &known)
{
    HierarchyState &state = context.device.hierarchy;
    state.previousKey = context.request.document.text(QStringLiteral("SyncKey"));
    state.previousKnown = state.known;
    state.known = known;
    state.key = context.nextKey();
    return state.key;
}

CommandReply HierarchyKey::kept(const CommandContext &context, const WbxmlNode &reply)
{
    HierarchyState &state = context.device.hierarchy;
    state.lastRequest = context.request.document;
    state.lastReply = reply;
    return CommandReply::of(reply);
}

} // namespace Simulator
