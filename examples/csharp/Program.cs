// Lists the drivers of this machine: a line for each, or with "json" the whole inventory as one JSON document.
using System;
using System.IO;
using System.Text;
using Orvane;

internal static class Program
{
    private static void PrintRecords(Inventory inventory, TextWriter output)
    {
        for (int record = 0; record < inventory.Count; ++record)
        {
            output.Write(inventory.Text(record, "kind") + "\t" + inventory.Text(record, "name") + "\t" +
                inventory.Text(record, "version") + "\n");
        }
    }

    private static int Main(string[] arguments)
    {
        try
        {
            using (var output = new StreamWriter(Console.OpenStandardOutput(), new UTF8Encoding(false)))
            using (Inventory inventory = Inventory.Collect())
            {
                if (arguments.Length > 0 && arguments[0] == "json") output.Write(inventory.ToDocument(Document.Json));
                else PrintRecords(inventory, output);
            }
            return 0;
        }
        catch (DriverInventoryException failure)
        {
            Console.Error.WriteLine("list: " + failure.Message);
            return 1;
        }
    }
}
