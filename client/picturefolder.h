// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/galitem.h"

#include <QSet>
#include <QString>

/** Writes the pictures of people into a folder, each under the name of its person. On the stack of a command.
 */
class PictureFolder
{
public:
    explicit PictureFolder(const QString &path);

    /** Makes the folder; false, after an error was printed, if it cannot be made. */
    bool open() const;
    /** The path of the file, which replaces an older one of this name; empty for a person without a picture,
     * and after an error. */
    QString write(const GalItem &person);
    bool hasFailed() const { return mHasFailed; }

private:
    QString fileName(const GalItem &person, const QByteArray &picture);

    QString mPath;
    /** Of two people of one name the second gets another file. */
    QSet<QString> mNames;
    bool mHasFailed = false;
};
