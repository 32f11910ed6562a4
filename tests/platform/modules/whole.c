int corlune_test_first(void) { return 1; }
int corlune_test_second(void) { return 2; }
