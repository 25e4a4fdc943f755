// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailfolderkind.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr auto NoStandardFolder = QMailFolder::StandardFolder(0);

const MailFolderKind kinds[] = {
    { EasFolderItem::UserCreatedGenericFolder, QMailFolder::DeletionPermitted, NoStandardFolder },
    { EasFolderItem::DefaultInboxFolder, QMailFolder::Incoming, QMailFolder::InboxFolder },
    { EasFolderItem::DefaultDraftsFolder, QMailFolder::Drafts, QMailFolder::DraftsFolder },
    { EasFolderItem::DefaultDeletedItemsFolder, QMailFolder::Trash, QMailFolder::TrashFolder },
    { EasFolderItem::DefaultSentItemsFolder, QMailFolder::Sent, QMailFolder::SentFolder },
    { EasFolderItem::DefaultOutboxFolder, QMailFolder::Outgoing, QMailFolder::OutboxFolder },
    { EasFolderItem::UserCreatedMailFolder, QMailFolder::DeletionPermitted, NoStandardFolder },
};

} // namespace

const MailFolderKind *MailFolderKind::of(EasFolderItem::FolderType type)
{
    const auto *const kind = std::find_if(std::begin(kinds), std::end(kinds),
        [type](const MailFolderKind &candidate) { return candidate.type == type; });
    return kind == std::end(kinds) ? nullptr : kind;
}
