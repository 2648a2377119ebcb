// A library needs a source file; one of precompiled headers has nothing else to say.
