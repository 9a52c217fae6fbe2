// Command list lists the drivers of this machine: a line for each, or with "json" the whole inventory as one JSON
// document.
package main

import (
	"bufio"
	"fmt"
	"os"

	"orvane.example/driverinventory/driverinventory"
)

func printRecords(inventory *driverinventory.Inventory) error {
	members := make([]int32, 0, 3)
	for _, name := range []string{"kind", "name", "version"} {
		member, err := driverinventory.Member(name)
		if err != nil {
			return err
		}
		members = append(members, member)
	}
	count, err := inventory.Len()
	if err != nil {
		return err
	}
	output := bufio.NewWriter(os.Stdout)
	defer output.Flush()
	for record := 0; record < count; record++ {
		for i, member := range members {
			text, err := inventory.Text(record, member)
			if err != nil {
				return err
			}
			fmt.Fprint(output, text, []string{"\t", "\t", "\n"}[i])
		}
	}
	return nil
}

func run() error {
	inventory, err := driverinventory.Collect()
	if err != nil {
		return err
	}
	defer inventory.Close()
	if len(os.Args) > 1 && os.Args[1] == "json" {
		json, err := inventory.Document(driverinventory.JSON)
		fmt.Print(json)
		return err
	}
	return printRecords(inventory)
}

func main() {
	if err := run(); err != nil {
		fmt.Fprintln(os.Stderr, "list:", err)
		os.Exit(1)
	}
}
