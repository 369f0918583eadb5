#pragma once

#include "utils/ParameterBlock.h"

/// Reads the contents of a flat block into an empty CParameterBlock, with all that is nested in it;
/// the work of CParameterBlock::LoadBlock. What comes from the buffer can make it neither read
/// outside the buffer, nor recurse, nor take more memory than in proportion to the buffer.
long LoadContents(CParameterBlock& root, const std::vector<std::string>* pNames,
                  unsigned long nSize, const unsigned char* pSource);
