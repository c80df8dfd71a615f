#pragma once

/// Expectations about the exceptions of the library.

#include "Tools/Exception.h"

#include <gtest/gtest.h>

#include <string>
#include <typeinfo>

namespace TestSupport {

/// The words behind the catalogue's description in a comment "description\nwords".
inline std::string Words(const ClException& e) {
    const std::string comment = e.What() != nullptr ? e.What() : "";
    const std::size_t nFeed = comment.find('\n');
    return nFeed == std::string::npos ? std::string() : comment.substr(nFeed + 1);
}

} // namespace TestSupport

/// The statement throws an exception of exactly the class `Class`, with the number and the words.
#define EXPECT_THROWS(statement, Class, number, words)                                             \
    try {                                                                                          \
        statement;                                                                                 \
        ADD_FAILURE() << "nothing was thrown by " #statement;                                      \
    } catch (const ClException& e) {                                                               \
        EXPECT_TRUE(typeid(e) == typeid(Class)) << typeid(e).name() << " is no " #Class;           \
        EXPECT_EQ(e.Number(), number);                                                             \
        EXPECT_EQ(TestSupport::Words(e), words);                                                   \
    }

/// The statement throws exactly a `ClExTessarin`, whose words are the catalogue's.
#define EXPECT_TESSARIN(statement, number)                                                         \
    EXPECT_THROWS(statement, ClExTessarin, number, GetErrorDescriptionIntern(number))
