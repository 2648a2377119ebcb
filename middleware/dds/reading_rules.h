// What the standard asks of the arguments of a read or take (OMG DDS 1.4, 2.2.2.5.3.8 to 2.2.2.5.3.17),
// decided in one place for every implementation of the reader. Keeps nothing; any thread may call it.
#pragma once

#include "middleware/dds/dds.h"

// OK when the call may go ahead. NO_DATA when the instance that is asked for cannot have a sample.
// BAD_PARAMETER for null infos, a maximum number of samples below 1, or an instance that does not exist.
// PRECONDITION_NOT_MET when the two sequences differ in length, maximum or ownership, still hold a loan, or
// are owned and have less room than the number of samples asked for.
DDS_ReturnCode_t ZULReading_check(const DDS_DataSeqView& data, const DDS_SampleInfoSeq* infos,
                                  const DDS_ReadOrTakeParams& params);
