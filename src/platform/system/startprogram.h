// Starting another program.
#pragma once

// Starts a program by its bare name, without arguments: looked for under exactly that name in the directory
// of the running program, then in the current directory, then in those of PATH. It is not waited for, lives
// on when this process ends, and has no standard input. Above 31 on success, else the error number: 2 when
// there is no such program.
int WinExec(const char* program);
