/**
 * The main function of a program that links one whole library of ours. The link fails if the
 * library needs another library of ours.
 */
int main()
{
    return 0;
}
