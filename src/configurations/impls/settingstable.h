// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "accounts/base/accountrecord.h"

#include <variant>

/** How the account record writes down a setting. */
enum class SettingForm {
    Native,
    /** A number that is stored as decimal text. */
    DecimalText
};

/** One setting of a configuration: its key in the account record and the member that keeps its value. */
template <class Values> struct SettingRow
{
    const char *key;
    std::variant<bool Values::*, int Values::*, QString Values::*> member;
    SettingForm form = SettingForm::Native;
    /** Stands in the global part of the record instead of the configuration's service. */
    bool global = false;
};

/** Stores a value as read from the record; true if it differs from the one before. */
template <class Values>
bool storeSetting(const SettingRow<Values> &row, const QVariant &stored, Values &values)
{
    const auto replace = [&values](auto member, auto value) {
        const bool differs = values.*member != value;
        values.*member = value;
        return differs;
    };
    if (const auto *flag = std::get_if<bool Values::*>(&row.member))
        return replace(*flag, stored.toBool());
    if (const auto *text = std::get_if<QString Values::*>(&row.member))
        return replace(*text, stored.toString());
    const int number = row.form == SettingForm::DecimalText ? stored.toString().toInt() : stored.toInt();
    return replace(std::get<int Values::*>(row.member), number);
}
