/** Linked with the whole of one library. Links only if the library needs none of our others. */
int main()
{
    return 0;
}
