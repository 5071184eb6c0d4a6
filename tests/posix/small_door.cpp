extern "C" __attribute__((visibility("default"))) int TellFortyTwo();

int TellFortyTwo() { return 42; }
