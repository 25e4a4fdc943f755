// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailstore.h>

#include <QString>
#include <QThread>

/** Makes what tests of the mail store need, each under a new number or name. */
namespace MailFixture {

/** An account of the mail store alone. */
QMailAccountId addAccount();
QMailFolderId addFolder(const QMailAccountId &account, const QString &name = QStringLiteral("Inbox"),
    const QMailFolderId &parent = QMailFolderId());
QMailMessage newMessage(
    const QMailAccountId &account, const QMailFolderId &folder, const QString &uid = QString());
QMailMessageId addMessage(
    const QMailAccountId &account, const QMailFolderId &folder, const QString &uid = QString());

QMailMessageBody textBody(const QString &text, const QByteArray &type = "text/plain; charset=UTF-8");

/** Runs f in a thread of its own, which has a mail store object of its own: as another process, or after a
 * restart. */
template <typename F> void withOtherStore(F f)
{
    QThread *thread = QThread::create(f);
    thread->start();
    thread->wait();
    thread->deleteLater();
}

} // namespace MailFixture
