#pragma once

/// Registers the commands around the object pool: load, create, newLabels, objects, remove.
void hxRegisterDataCommands();
