// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/command.h"

namespace Simulator {

/** Class of the items in a folder of that type: "Email", "Calendar", "Contacts", "Tasks", "Notes". */
QString itemClassOf(int folderType);

/** Whether a device that knows this much of the folder would get something by a Sync. */
bool hasNews(const MailFolder &folder, const Mailbox &mailbox, const CollectionState &state);

/** One collection of one Sync request. */
class CollectionSync
{
public:
    /** @p window is the most that the reply may bring. */
    CollectionSync(const CommandContext &context, const WbxmlNode &request, int window);

    WbxmlNode run();
    /** Adds, changes and deletes in the reply. */
    int changeCount() const { return mChangeCount; }
    /** Whether the reply tells the client anything that it does not know. */
    bool isSilent() const { return mIsSilent; }

private:
    friend bool hasNews(const MailFolder &, const Mailbox &, const CollectionState &);

    WbxmlNode statusReply(int status, const QString &key) const;
    WbxmlNode startAfresh(CollectionState &state);
    WbxmlNode proceed(CollectionState &state, const QString &key);
    std::optional<QSet<QString>> supportedElements() const;
    bool wantsChanges() const;
    /** What differs between the folder and what the device knows of it. */
    struct Difference;
    static Difference differenceOf(
        const MailFolder &folder, const Mailbox &mailbox, const CollectionState &state);
    QVector<WbxmlNode> removals(const Difference &difference, CollectionState &state) const;
    QVector<WbxmlNode> changes(CollectionState &state, bool *more);
    WbxmlNode itemNode(
        const QString &element, const ItemEntry &entry, const QVector<WbxmlNode> &fields) const;

    const CommandContext &mContext;
    const WbxmlNode mRequest;
    const QString mId;
    const MailFolder mFolder;
    const int mWindow;
    int mChangeCount = 0;
    bool mIsSilent = false;
};

} // namespace Simulator
