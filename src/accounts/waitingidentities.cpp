// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/waitingidentities.h"

#include "application/base/logging.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>

namespace {

const QString folder = QStringLiteral(".local/share/system/privileged/eas-fennel");
constexpr char ShownMark[] = "shown";
constexpr QFile::Permissions OwnFile = QFile::ReadOwner | QFile::WriteOwner;

} // namespace

QString WaitingIdentities::defaultFile()
{
    return QDir::home().filePath(folder + QStringLiteral("/identities-to-remove"));
}

WaitingIdentities::WaitingIdentities(const QString &file)
    : mFile(file)
{
}

Lookup<WaitingIdentities::Identities> WaitingIdentities::all() const
{
    const Lookup<States> states = read();
    if (!states)
        return Lookup<Identities>::unread();
    const QList<quint32> identities = states->keys();
    return Identities(identities.cbegin(), identities.cend());
}

bool WaitingIdentities::wasShown(quint32 identity) const
{
    return read().valueOr({}).value(identity, Unknown) == Shown;
}

bool WaitingIdentities::add(const Identities &identities) const
{
    const Lookup<States> before = read();
    if (!before)
        return false;
    States after = *before;
    for (const quint32 identity : identities)
        after.insert(identity, before->value(identity, Unknown));
    return after == *before || write(after);
}

bool WaitingIdentities::noteShown(quint32 identity) const
{
    const Lookup<States> before = read();
    if (!before)
        return false;
    States after = *before;
    after.insert(identity, Shown);
    return after == *before || write(after);
}

bool WaitingIdentities::remove(quint32 identity) const
{
    const Lookup<States> before = read();
    if (!before)
        return false;
    States after = *before;
    return after.remove(identity) == 0 || write(after);
}

Lookup<WaitingIdentities::States> WaitingIdentities::read() const
{
    QFile file(mFile);
    if (!file.exists())
        return States();
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(eas()) << "cannot read" << mFile << file.errorString();
        return Lookup<States>::unread();
    }
    States states;
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray &line : lines) {
        const QList<QByteArray> words = line.split(' ');
        // What is no number is no identity of ours.
        if (const quint32 identity = words.first().toUInt())
            states.insert(identity, words.value(1) == ShownMark ? Shown : Unknown);
    }
    return states;
}

bool WaitingIdentities::write(const States &states) const
{
    if (states.isEmpty()) {
        if (QFile::remove(mFile))
            return true;
        qCWarning(eas()) << "cannot remove" << mFile;
        return false;
    }
    QByteArray text;
    for (auto state = states.cbegin(); state != states.cend(); ++state) {
        text += QByteArray::number(state.key());
        text += state.value() == Shown ? QByteArray(" ") + ShownMark + '\n' : QByteArray("\n");
    }
    // The folder is the mapping's, which has made it for the user alone.
    QSaveFile file(mFile);
    if (file.open(QIODevice::WriteOnly) && file.setPermissions(OwnFile) && file.write(text) == text.size()
        && file.commit())
        return true;
    qCWarning(eas()) << "cannot write" << mFile << file.errorString();
    return false;
}
