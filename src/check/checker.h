#pragma once

#include "budget.h"

#include <cstdio>
#include <string>

/// Runs a document as xmlpp does, but writes none. Writes on \a messages what xmlpp does not say, in
/// the form that compilers have given to their messages and editors read: what is odd in the files,
/// what of them came to nothing in the run, and where its error is. Returns whether that is nothing.
///
/// Every file is read twice: the run drops text, and changes what it reads. What a file says as it
/// stands is found in a second reading, which only a pipe cannot have.
bool checkRun(const std::string &fileName, const std::string &macroList, const Limits &limits,
              FILE *messages);
