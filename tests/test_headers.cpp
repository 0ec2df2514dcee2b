// What the tests include is read while this is compiled.
int main() {}
