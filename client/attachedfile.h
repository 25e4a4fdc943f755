// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>
#include <qmailmessage.h>

#include <optional>

/** A file of the user's that goes along with a message. A value. */
class AttachedFile
{
public:
    explicit AttachedFile(const QString &path)
        : mPath(path)
    {
    }

    /** False, after an error was printed, if there is no such file or it may not be read. */
    bool isThere() const;
    /** Its name, its type and its octets, which stay in the file; nothing, after an error, if it cannot be
     * read. */
    std::optional<QMailMessagePart> part() const;

private:
    QString mPath;
};
