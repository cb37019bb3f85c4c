#pragma once

/// Registers the script commands of the main window: menu, windowSnapshot.
void hxRegisterWindowCommands();
