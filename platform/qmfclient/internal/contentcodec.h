// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>
#include <QList>

#include <functional>

class BodyOctets;
class MimeNode;

/** The form that content has in the store: received messages byte for byte, all others as their tree of
 * parts. */
struct StoredContent
{
    enum Format { Tree = 1, Received = 2 };
    int format = Tree;
    QByteArray data;
    /** Numbers of the long bodies, which are not in the data. */
    QList<quint64> bodies;
};

/** Keeps a long body outside the data and returns its number, 0 if that failed. */
typedef std::function<quint64(const BodyOctets &)> KeepBody;

/** False if a long body could not be kept. */
bool encodeContent(const MimeNode &node, const KeepBody &keep, StoredContent *content);
/** Leaves the node empty if the data is not of the format. */
void decodeContent(const StoredContent &content, MimeNode &node);
