// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/command.h"

namespace Simulator {

/** What Search and Find have in common: how mail is matched, and which part of the matches is told. */
namespace SearchResults {

struct MailQuery
{
    /** Each has to stand in the subject, in an address or in the text. */
    QStringList words;
    /** Received after and before these; invalid ones do not count. */
    QDateTime after;
    QDateTime before;
    /** Empty for the whole mailbox. */
    QStringList folderIds;
    /** With the folders below those. */
    bool isDeep = false;
};

/** The identifiers of the matching messages, the newest first. */
QStringList matches(const Mailbox &mailbox, const MailQuery &query);

/** The part of so many matches that "first-last" names; none of it where the text is no range. */
struct Part
{
    int first = 0;
    int last = -1; ///< before @ref first if there is nothing in the part

    static Part of(const QString &range, int count, int usualCount);
    /** Whether there are matches, and none in the part. */
    bool isBeyond(int count) const { return count > 0 && first >= count; }
    QString text() const { return QStringLiteral("%1-%2").arg(first).arg(last); }
};

} // namespace SearchResults
} // namespace Simulator
