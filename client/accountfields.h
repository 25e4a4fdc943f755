// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QJsonObject>
#include <QStringList>

#include <Accounts/Service>

struct AccountSettings;

namespace Accounts {
class Account;
class Manager;
} // namespace Accounts

/** An account's record in the account store, read and written by the words of the command line. */
namespace AccountFields {

/** What an account can synchronise. */
QStringList serviceNames();
/** Which of an account's mail folders can be synchronised. */
QStringList folderChoices();

/** Whether the account store knows the engine's provider. */
bool isProviderInstalled(const Accounts::Manager &manager);

QJsonObject describe(const Accounts::Manager &manager, Accounts::Account &account);
/** Changes what the user has told; nothing is stored yet. */
void apply(const Accounts::Manager &manager, Accounts::Account &account, const AccountSettings &settings);

Accounts::Service mailService(const Accounts::Account &account);

} // namespace AccountFields
