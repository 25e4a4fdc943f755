// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QObject>

#include <functional>
#include <memory>

/** Enters a test class, so that the folder's executable can run it by its lower-case name. */
class TestRegistration
{
public:
    using Factory = std::function<std::unique_ptr<QObject>()>;

    TestRegistration(const char *name, Factory factory);
};

#define FENNEL_REGISTER_TEST(TestClass)                                                                      \
    static const TestRegistration registration##TestClass(                                                   \
        #TestClass, [] { return std::unique_ptr<QObject>(new TestClass); });
