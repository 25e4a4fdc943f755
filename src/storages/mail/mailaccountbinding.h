// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class MailFolderAdapter;
class MailFolderChanges;
struct MailStoreContext;

/**
 * Finds the mail account of an Exchange account, which may appear later than its mail storage, and repairs
 * then what an interrupted run has left in the mail store.
 *
 * A collaborator of MailStorageImpl; the context has a store.
 */
class MailAccountBinding
{
public:
    MailAccountBinding(MailStoreContext &context, MailFolderAdapter &folders, MailFolderChanges &changes);

    bool isBound() const;
    /** Looks for the mail account unless it is known. */
    void bindOnce();
    /** The same; false, after a log line, if there still is none. */
    bool find();

private:
    void bind();
    void repairFolders();

    MailStoreContext &mContext;
    MailFolderAdapter &mFolders;
    MailFolderChanges &mChanges;
};
