// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QStringList>

class QMailMessage;
class QMailMessagePart;
struct ImapMessage;

/** What is wrong with a message on the device, when it is held against the one that IMAP tells. */
namespace MessageComparison {

/** Subject, addresses, date, read mark. */
QStringList headers(const QMailMessage &device, const ImapMessage &imap);

/** The text, whichever of the message's texts the server chose. */
QStringList body(const QMailMessage &device, const ImapMessage &imap);

/** Names and announced sizes of attachments; none of them has been downloaded. */
QStringList announcedAttachments(const QMailMessage &device, const ImapMessage &imap);

/** Names, sizes and contents of attachments that have all been downloaded. */
QStringList downloadedAttachments(const QMailMessage &device, const ImapMessage &imap);

/** The places of all attachments of a message, to ask for them. */
QStringList attachmentLocations(const QMailMessage &device);

} // namespace MessageComparison
