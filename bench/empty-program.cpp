// What starting a program costs that does nothing at all.
int main() {}
