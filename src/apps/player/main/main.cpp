int main()
{
    return 0; // FIXME: the player
}
