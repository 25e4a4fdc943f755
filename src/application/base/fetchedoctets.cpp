// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/base/fetchedoctets.h"

#include "application/base/logging.h"

#include <QDir>
#include <QStandardPaths>
#include <QTemporaryFile>

namespace {

/** More than this is not held in memory. */
constexpr int maxOctetsInMemory = 512 * 1024;

constexpr QFile::Permissions OwnFolder = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;

QString folder()
{
    return QStandardPaths::writableLocation(QStandardPaths::CacheLocation) + QStringLiteral("/fetched");
}

} // namespace

void FetchedOctets::removeLeftBehind()
{
    QDir(folder()).removeRecursively();
}

int FetchedOctets::size() const
{
    return mFile ? int(mFile->size()) : mOctets.size();
}

bool FetchedOctets::append(const QByteArray &octets)
{
    if (!mFile && mOctets.size() + octets.size() > maxOctetsInMemory && !moveToFile())
        return false;
    if (mFile)
        return write(octets);
    mOctets.append(octets);
    return true;
}

bool FetchedOctets::moveToFile()
{
    if (!QDir().mkpath(folder()) || !QFile::setPermissions(folder(), OwnFolder)) {
        qCCritical(eas()) << "cannot make the folder for what is fetched:" << folder();
        return false;
    }
    auto file = std::make_shared<QTemporaryFile>(folder() + QStringLiteral("/XXXXXX"));
    if (!file->open()) {
        qCCritical(eas()) << "cannot keep what is fetched:" << file->errorString();
        return false;
    }
    mFile = file;
    if (!write(mOctets)) {
        mFile.reset();
        return false;
    }
    mOctets.clear();
    return true;
}

bool FetchedOctets::write(const QByteArray &octets)
{
    if (mFile->seek(mFile->size()) && mFile->write(octets) == octets.size() && mFile->flush())
        return true;
    qCCritical(eas()) << "cannot keep what is fetched:" << mFile->errorString();
    return false;
}

QString FetchedOctets::fileName() const
{
    const QString name = mFile ? mFile->fileName() : QString();
    if (name.isEmpty())
        qCCritical(eas()) << "what is fetched is in no file";
    return name;
}

QByteArray FetchedOctets::all() const
{
    if (!mFile)
        return mOctets;
    const QByteArray octets = mFile->seek(0) ? mFile->readAll() : QByteArray();
    if (octets.size() != size())
        qCCritical(eas()) << "cannot read what was fetched:" << mFile->errorString();
    return octets;
}
