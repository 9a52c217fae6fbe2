// An image needs some code to be linked.
extern "C" int Image() { return 0; }
