#pragma once

// Makes the compiled-in resources known to Qt: images and the packed sensor and
// fan databases under ":/Resources/", the English texts as
// ":/build/languages/English.xml". To be called once, before the first of them is
// used: the linker would leave them out of a program that doesn't.
void initResources();
