// What is examined of the server itself. Each asks, and changes nothing; a finding whose outcome is
// neither Done nor ServerError ends the examination.
#pragma once

#include "apps/link/doctor/Examiner.h"

namespace Tarvane::Link
{

/// Is it there, and does text come back as it went?
Finding CheckServer(const CExaminer& examiner);
/// Which version does it say that it is?
Finding CheckVersion(const CExaminer& examiner);
/// What does it answer when nothing is printed?
Finding CheckSilence(const CExaminer& examiner);
/// Does it report the errors of scripts?
Finding CheckErrors(const CExaminer& examiner);
Finding CheckSpeed(const CExaminer& examiner);
/// Which functions of the contract does it lack?
Finding CheckFunctions(const CExaminer& examiner);
/// Is there a document to work on?
Finding CheckDocument(const CExaminer& examiner);
/// Does it work at the host's rate?
Finding CheckRates(const CExaminer& examiner);

} // namespace Tarvane::Link
