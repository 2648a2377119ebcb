// Dotted assignments: "domain_route.participant_1.domain_id=5" as the XML that says the same.
#pragma once

// Turns an assignment into an inline XML URL, "str://" and the quoted snippet, which the caller owns
// (DDS_String_free). Null when `text` is no assignment, has more than 31 components, or memory is exhausted;
// only the last sets errno, to ENOMEM.
char* ROUTERRemoteConfigClient_convertAssignmentToXmlSnippet(const char* text);
