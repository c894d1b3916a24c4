// Reads examples/wells_cp1251.csv through bindings/csharp/VokTableRw.cs and prints a short report.
//
//     read_wells.exe [folder]      the folder that holds wells_cp1251.csv; "examples" when not given
//
// Shown here: options, reading, columns and rows, the list of rejected lines, value search, closing.
// mcs:    mcs -out:read_wells.exe examples/read_wells.cs bindings/csharp/VokTableRw.cs
// dotnet: a console project that holds both files
using System;
using System.IO;
using System.Text;
using Vok.TableRw;

internal static class ReadWells
{
    private static int Main(string[] arguments)
    {
        // UTF-8, whatever the console is set to, and no mark before it.
        var output = new StreamWriter(Console.OpenStandardOutput(), new UTF8Encoding(false)) { NewLine = "\n" };
        string folder = arguments.Length > 0 ? arguments[0] : "examples";
        var options = new TableOptions { Encoding = Encodings.Cp1251 };
        try
        {
            using (Table table = Table.Read(Path.Combine(folder, "wells_cp1251.csv"), options))
                Report(table, output);
        }
        catch (IOException error) // a missing file, or a TableException
        {
            Console.Error.WriteLine(error.Message);
            return 1;
        }
        finally
        {
            output.Flush();
        }
        return 0;
    }

    private static void Report(Table table, TextWriter output)
    {
        output.WriteLine("{0} fields: {1}", table.FieldCount, string.Join(" | ", table.Names));
        output.WriteLine("{0} rows", table.Count);
        for (long row = 0; row < table.Count; ++row)
            output.WriteLine("  " + string.Join(" | ", table.Row(row)));

        // Values are text; a blank one is no number.
        double depth = 0;
        foreach (string value in table.Column("Глубина, м"))
        {
            double number;
            if (double.TryParse(value, System.Globalization.NumberStyles.Float,
                                System.Globalization.CultureInfo.InvariantCulture, out number))
                depth += number;
        }
        output.WriteLine("drilled: {0} m", depth.ToString(System.Globalization.CultureInfo.InvariantCulture));

        // The library counts lines from 0; people and their editors count from 1.
        foreach (RejectedLine line in table.Rejected())
            output.WriteLine("rejected: line {0}: {1}", line.Number + 1, line.Text);

        string[] wells = table.Find("Скважина", new Condition("Назначение", "добывающая"),
                                    new Condition("Год", "2016"));
        output.WriteLine("producers of 2016: " + string.Join(", ", wells));
    }
}
