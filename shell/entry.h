// The program, for one product variant.
#pragma once

// Runs the shell of a product variant from start to end and returns the exit status: 0 after a normal end, 1
// when signals could not be set up, -1 after help and for every other start-up failure. The first argument is
// the program name.
int ROUTERShell_run(int productId, int argumentCount, char** arguments);
