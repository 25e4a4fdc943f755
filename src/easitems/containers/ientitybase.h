// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

/** What every value that mirrors a database row can do: take over another row, and be emptied. */
template <typename Entity> class IEntityBase
{
public:
    virtual Entity &operator=(const Entity &other) = 0;
    virtual void clear() = 0;

protected:
    IEntityBase() = default;
    IEntityBase(const IEntityBase &) = default;
    ~IEntityBase() = default;
};
