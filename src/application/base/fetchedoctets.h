// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <memory>

class QTemporaryFile;

/**
 * What has arrived of a file: in memory while it is short, after that in a file that is the user's alone and
 * goes with the last of these objects. That file has no name before it is asked for, so that a killed process
 * leaves one behind only where something was reading it.
 *
 * A value, but copies share the file: only one of them may go on collecting. Main thread only.
 */
class FetchedOctets
{
public:
    FetchedOctets() = default;
    FetchedOctets(const QByteArray &octets)
        : mOctets(octets)
    {
    }

    /** Removes what killed processes have left behind; at the start, before anything is fetched. */
    static void removeLeftBehind();

    int size() const;
    bool isEmpty() const { return size() == 0; }
    /** False, logged, if they cannot be kept. */
    [[nodiscard]] bool append(const QByteArray &octets);

    bool isInFile() const { return mFile != nullptr; }
    /** Of the file, which lives as long as this object or a copy does; empty, logged, without one. */
    QString fileName() const;
    /** All of them, in memory; fewer, logged, if the file cannot be read. */
    QByteArray all() const;

private:
    bool moveToFile();
    bool write(const QByteArray &octets);

    QByteArray mOctets;
    std::shared_ptr<QTemporaryFile> mFile;
};
