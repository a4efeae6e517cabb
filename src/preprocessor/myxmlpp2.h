#pragma once

#include "xmlpp2.h"

/// The preprocessor of the command line: the first error ends the process.
class MyXMLPP2 : public XMLPP2
{
public:
    using XMLPP2::XMLPP2;

    /// Prints the message and a line feed on standard error and exits with status 1.
    [[noreturn]] void reportError(const std::string &message) override;
};
