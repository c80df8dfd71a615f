#pragma once

/// Locales that an application may have chosen, made from their sources where the system can.

#include "support/TestFolder.h"

#include <clocale>
#include <cstdlib>
#include <string>

namespace TestSupport {

/// While it lives, the process has a locale of the system's sources; then "C" again.
class ClApplicationLocale {
public:
    /// Such as "de_DE" and "UTF-8".
    ClApplicationLocale(const std::string& Source, const std::string& Charset)
        : m_Name(Source + "." + Charset) {
        Build(Source, Charset); // first: a C library remembers what it did not find
        m_bSet = std::setlocale(LC_ALL, m_Name.c_str()) != nullptr;
    }
    ClApplicationLocale(const ClApplicationLocale&) = delete;
    ClApplicationLocale& operator=(const ClApplicationLocale&) = delete;
    ~ClApplicationLocale() { std::setlocale(LC_ALL, "C"); }

    /// Whether the system had it, or could make it.
    bool IsSet() const { return m_bSet; }

private:
    /// One folder for all tests of a program: a C library remembers where it found something, too.
    static const ClTestFolder& Folder() {
        static const ClTestFolder cFolder;
        return cFolder;
    }

    void Build(const std::string& Source, const std::string& Charset) const {
        if (std::filesystem::exists(Folder() / m_Name))
            return;
        setenv("LOCPATH", Folder().Path().c_str(), 1);
        const std::string Command = "localedef -i " + Source + " -f " + Charset + " '" +
                                    Folder() / m_Name + "' >/dev/null 2>&1";
        const int nEnd = std::system(Command.c_str()); // NOLINT(cert-env33-c): a system's tool
        if (nEnd != 0) // what the system itself has of this name will do
            unsetenv("LOCPATH");
    }

    std::string m_Name;
    bool m_bSet;
};

} // namespace TestSupport
