#pragma once

/// Registers the commands around the program itself: echo, quit, app, answer, preference, help.
void hxRegisterApplicationCommands();
