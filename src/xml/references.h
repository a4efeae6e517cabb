#pragma once

/// Decodes the references of the text from \a from up to \a end to \a to, which can be \a from
/// itself, and ends it with a NUL. With \a dropReturns the carriage returns that are
/// written as such are left out.
void decodeReferences(const char *from, const char *end, char *to, bool dropReturns);
