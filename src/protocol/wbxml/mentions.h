// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QPair>
#include <QSet>

/**
 * What the log has been told of a document already. A reply with thousands of foreign or wrong elements gets
 * one line for each kind, and does not fill the log.
 */
class Mentions
{
public:
    /** Whether this is the first time that something (a literal) is to be said of a tag. */
    bool isFirst(const char *what, uint tag)
    {
        const auto subject = qMakePair(what, tag);
        if (mKnown.contains(subject))
            return false;
        mKnown.insert(subject);
        return true;
    }

    void clear() { mKnown.clear(); }

private:
    QSet<QPair<const char *, uint>> mKnown;
};
