// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailmessagepart.h>

#include <QByteArray>
#include <QList>

/** Finds and rearranges the parts of a message by the role that they play. */
namespace PartTree {

/** One-based indices of a part, from the container that was searched. */
typedef QList<uint> Path;

/** The text of that subtype that a reader would be shown, or null. The pointer leads into the container. */
QMailMessagePartContainer *findText(QMailMessagePartContainer &container, const QByteArray &subType);
/** What setPlainTextBody() replaces: a text, or the alternative around it; null if there is none. */
QMailMessagePartContainer *findBodyContainer(QMailMessagePartContainer &container);

QList<const QMailMessagePart *> attachments(const QMailMessagePartContainer &container);
QList<const QMailMessagePart *> inlineImages(const QMailMessagePartContainer &container);
QList<const QMailMessagePart *> inlineParts(const QMailMessagePartContainer &container);
QList<QMailMessagePartContainer::Location> locations(const QList<const QMailMessagePart *> &parts);

/** The part at a location, or null. */
const QMailMessagePart *partAt(
    const QMailMessagePartContainer &message, const QMailMessagePartContainer::Location &location);
QMailMessagePart *partAt(
    QMailMessagePartContainer &message, const QMailMessagePartContainer::Location &location);

void remove(QMailMessagePartContainer &container, const QList<const QMailMessagePart *> &parts);
/** Moves the content into part 1 of a new multipart, unless it is one of that type already. */
void wrap(QMailMessagePartContainer &container, QMailMessagePartContainer::MultipartType type);

} // namespace PartTree
